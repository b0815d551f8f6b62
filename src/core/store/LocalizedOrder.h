// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace vorlane {

// The localized standard order of names and titles, as people expect in a file manager: the
// user's locale's collation, case ignored ("acme" beside "Acme"), digits compared by value
// ("Server 2" before "Server 10"), accents still ordered. Texts that differ only in case still
// get distinct keys in the locale's case order, so a list never depends on which was added
// first; only identical texts tie. Sort keys let the store keep its lists ordered without running
// the collator on every comparison. Not thread-safe; one per store.
class LocalizedOrder {
public:
    // An empty locale id means the process's default locale (LC_ALL / LANG). The C and POSIX
    // locales (ICU's en_US_POSIX) get the root collation, with case ignored as everywhere.
    explicit LocalizedOrder(std::string_view localeId = {});
    ~LocalizedOrder();
    LocalizedOrder(const LocalizedOrder&) = delete;
    LocalizedOrder& operator=(const LocalizedOrder&) = delete;

    // Bytes that compare (with <) as the texts compare in this order.
    std::string sortKey(std::string_view text) const;

private:
    struct Collation;
    std::unique_ptr<Collation> m_collation;
};

} // namespace vorlane
