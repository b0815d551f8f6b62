// SPDX-License-Identifier: GPL-3.0-or-later
#include "importer/BitwardenJsonReader.h"

#include "importer/ImportDate.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdint>
#include <optional>
#include <tuple>
#include <unordered_map>

namespace vorlane {

namespace {

using Json = nlohmann::json;

// The member as text: strings as they are, numbers and flags written out, null or absent empty.
std::string text(const Json& object, const char* key) {
    if (!object.is_object()) {
        return {};
    }
    const auto found = object.find(key);
    if (found == object.end() || found->is_null()) {
        return {};
    }
    return found->is_string() ? found->get<std::string>() : found->dump();
}

// The member as an integer; nothing when it is absent or not a whole number.
std::optional<std::int64_t> integer(const Json& object, const char* key) {
    const auto found = object.find(key);
    if (found == object.end() || !found->is_number_integer()) {
        return std::nullopt;
    }
    return found->get<std::int64_t>();
}

// id to name, for folders and collections.
std::unordered_map<std::string, std::string> names(const Json& root, const char* key) {
    std::unordered_map<std::string, std::string> byId;
    const auto list = root.find(key);
    if (list != root.end() && list->is_array()) {
        for (const Json& item : *list) {
            byId.emplace(text(item, "id"), text(item, "name"));
        }
    }
    return byId;
}

std::string itemKind(std::int64_t type) {
    switch (type) {
    case 3:
        return "card";
    case 4:
        return "identity";
    case 5:
        return "SSH key";
    default:
        return "item of type " + std::to_string(type);
    }
}

} // namespace

bool BitwardenJsonReader::recognizes(std::string_view text) {
    return text.starts_with("{");
}

Result<std::vector<ImportedEntry>, std::string> BitwardenJsonReader::read(std::string_view input) {
    const Json root = Json::parse(input, nullptr, /*allow_exceptions=*/false);
    if (root.is_discarded()) {
        // Parse again only to learn where it failed; the exception never leaves this function.
        std::size_t at = input.size();
        try {
            [[maybe_unused]] const Json again = Json::parse(input);
        } catch (const Json::parse_error& error) {
            at = std::min(error.byte, input.size());
        }
        const auto line = 1 + std::count(input.begin(), input.begin() + at, '\n');
        return "line " + std::to_string(line) + ": the JSON is damaged or cut short";
    }
    if (!root.is_object()) {
        return std::string("this JSON is not a Bitwarden export (it is not an object)");
    }
    if (const auto encrypted = root.find("encrypted");
        encrypted != root.end() && encrypted->is_boolean() && encrypted->get<bool>()) {
        return std::string(encryptedMessage);
    }
    const auto items = root.find("items");
    if (items == root.end() || !items->is_array()) {
        return std::string("this JSON is not a Bitwarden export: it has no \"items\"");
    }
    const auto folders = names(root, "folders");
    const auto collections = names(root, "collections");
    std::vector<ImportedEntry> entries;
    entries.reserve(items->size());
    std::size_t number = 0;
    for (const Json& item : *items) {
        ++number;
        if (!item.is_object()) {
            continue;
        }
        if (!text(item, "deletedDate").empty()) {
            continue; // in the trash
        }
        ImportedEntry entry = ImportedEntry::at(number);
        const std::string where = "item " + std::to_string(number) + ": ";
        entry.record.title = text(item, "name");
        entry.record.notes = text(item, "notes");
        const std::int64_t type = integer(item, "type").value_or(0);
        if (type != 1 && type != 2) {
            entry.rejection = where + "a Bitwarden " + itemKind(type) + " is not a service";
        }
        if (const auto folder = folders.find(text(item, "folderId")); folder != folders.end()) {
            entry.groups = {folder->second};
        } else if (const auto ids = item.find("collectionIds"); ids != item.end() &&
                                                                ids->is_array() && !ids->empty() &&
                                                                ids->front().is_string()) {
            if (const auto found = collections.find(ids->front().get<std::string>());
                found != collections.end()) {
                entry.groups = {found->second};
            }
        }
        if (const auto login = item.find("login"); login != item.end() && login->is_object()) {
            entry.record.username = text(*login, "username");
            entry.password = text(*login, "password");
            entry.totp = text(*login, "totp");
            if (const auto uris = login->find("uris"); uris != login->end() && uris->is_array()) {
                for (const Json& uri : *uris) {
                    const std::string address = text(uri, "uri");
                    if (address.empty()) {
                        continue;
                    }
                    if (entry.record.loginURL.empty()) {
                        entry.record.loginURL = address;
                    } else {
                        entry.fields.push_back({"URL", address, false});
                    }
                }
            }
        }
        if (const auto fields = item.find("fields"); fields != item.end() && fields->is_array()) {
            for (const Json& field : *fields) {
                const std::string value = text(field, "value");
                if (!value.empty()) {
                    entry.fields.push_back(
                        {text(field, "name"), value, integer(field, "type") == 1});
                }
            }
        }
        const Json noLogin;
        const auto login = item.find("login");
        // The password's own revision is the login's; the other two are the item's.
        for (const auto& [object, key, date] :
             {std::tuple{&item, "creationDate", &entry.createdAt},
              std::tuple{&item, "revisionDate", &entry.updatedAt},
              std::tuple{login != item.end() ? &*login : &noLogin, "passwordRevisionDate",
                         &entry.passwordChangedAt}}) {
            const std::string value = text(*object, key);
            if (value.empty()) {
                continue;
            }
            *date = ImportDate::iso8601(value);
            if (!*date && entry.rejection.empty()) {
                entry.rejection = where + key + " \"" + value + "\" is not a date";
            }
        }
        entries.push_back(std::move(entry));
    }
    return entries;
}

} // namespace vorlane
