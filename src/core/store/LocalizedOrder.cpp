// SPDX-License-Identifier: GPL-3.0-or-later
#include "store/LocalizedOrder.h"

#include "util/UserLocale.h"

#include <unicode/coll.h>
#include <unicode/locid.h>
#include <unicode/unistr.h>

#include <string>
#include <vector>

namespace vorlane {

struct LocalizedOrder::Collation {
    std::unique_ptr<icu::Collator> collator;
};

LocalizedOrder::LocalizedOrder(std::string_view localeId)
    : m_collation(std::make_unique<Collation>()) {
    UErrorCode status = U_ZERO_ERROR;
    m_collation->collator.reset(icu::Collator::createInstance(userLocale(localeId), status));
    if (U_FAILURE(status) || !m_collation->collator) {
        // The root collation is built into ICU and always there.
        status = U_ZERO_ERROR;
        m_collation->collator.reset(icu::Collator::createInstance(icu::Locale::getRoot(), status));
    }
    // Set every attribute that decides case and digits, whatever the locale's tailoring says.
    // Letters and accents decide first; case is compared only after them, at the tertiary level,
    // so it never moves "Beta" away from "alpha" and "gamma" but does put "acme", "Acme" and
    // "ACME" in one fixed order instead of the order they happened to be added in. The case
    // level would bring case in before accents; numeric collation reads digits as numbers.
    icu::Collator& collator = *m_collation->collator;
    status = U_ZERO_ERROR;
    collator.setAttribute(UCOL_STRENGTH, UCOL_TERTIARY, status);
    collator.setAttribute(UCOL_CASE_LEVEL, UCOL_OFF, status);
    collator.setAttribute(UCOL_NUMERIC_COLLATION, UCOL_ON, status);
}

LocalizedOrder::~LocalizedOrder() = default;

std::string LocalizedOrder::sortKey(std::string_view text) const {
    const icu::UnicodeString unicode = icu::UnicodeString::fromUTF8(
        icu::StringPiece(text.data(), static_cast<std::int32_t>(text.size())));
    std::vector<std::uint8_t> buffer(64 + static_cast<std::size_t>(unicode.length()) * 4);
    std::int32_t length = m_collation->collator->getSortKey(
        unicode, buffer.data(), static_cast<std::int32_t>(buffer.size()));
    if (static_cast<std::size_t>(length) > buffer.size()) {
        buffer.resize(static_cast<std::size_t>(length));
        length = m_collation->collator->getSortKey(unicode, buffer.data(), length);
    }
    // The key ends with a NUL byte that adds nothing to comparisons.
    return std::string(reinterpret_cast<const char*>(buffer.data()),
                       static_cast<std::size_t>(length > 0 ? length - 1 : 0));
}

} // namespace vorlane
