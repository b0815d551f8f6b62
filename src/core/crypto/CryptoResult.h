// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "crypto/CryptoError.h"
#include "util/Result.h"

namespace vorlane {

// What the crypto code returns: a value or a CryptoError, or, where a failure needs a sentence
// of its own (a malformed bundle file), another error type.
template <typename T, typename E = CryptoError> using CryptoResult = Result<T, E>;

} // namespace vorlane
