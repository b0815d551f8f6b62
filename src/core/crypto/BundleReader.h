// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "crypto/Bytes.h"
#include "crypto/CryptoResult.h"
#include "crypto/ExportBundle.h"

#include <string_view>

namespace vorlane {

// Opens an export bundle for its recipient: derives or decodes the key, opens the sealed
// payload and checks it against the bundle's integrity hash. Stateless.
class BundleReader {
public:
    // Whether `bundle` was sealed under a password (it carries a salt) rather than under a
    // generated key (no salt), i.e. which secret open() expects.
    static bool needsPassword(const ExportBundle& bundle);

    // The payload, only once all of it opened and its SHA-256 equals "integrity": never a part
    // of it. `secret` is the export password for a salted bundle, otherwise the generated key's
    // base64 text (surrounding whitespace, as from a pasted line, is ignored). Failures:
    // passwordRequired for an empty password; invalidKey for key text that is not base64 of 32
    // bytes; keyDerivationFailed for a password that is not UTF-8; decryptionFailed for a wrong
    // password or key, or any altered byte; integrityCheckFailed when the opened payload does
    // not match its hash. Does not keep `secret`; the caller wipes it and the payload.
    static CryptoResult<Bytes> open(const ExportBundle& bundle, std::string_view secret);
};

} // namespace vorlane
