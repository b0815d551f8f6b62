// SPDX-License-Identifier: GPL-3.0-or-later
#include "importer/KeePassXmlReader.h"

#include "importer/ImportDate.h"
#include "importer/ImportText.h"

#include <expat.h>

#include <climits>
#include <memory>
#include <optional>

namespace vorlane {

namespace {

struct Group {
    std::string uuid;
    std::string name;
};

// An earlier version of an entry from its History, as far as the password's age needs it.
struct PastVersion {
    std::string password;
    std::string modified; // its LastModificationTime, as written
};

// An entry while it is read: the entry, plus what is only known once it is complete.
struct PendingEntry {
    ImportedEntry entry;
    std::vector<PastVersion> history;    // oldest first, as KeePass keeps it
    std::vector<std::string> groupUuids; // of every group it is in, to find the recycle bin
    std::string protectedKey;            // the first value the database had encrypted
    std::optional<bool> expires;
    std::string expiryTime;
    std::string badDate; // "CreationTime \"x\"": a date that did not read
};

class Parser {
public:
    explicit Parser(XML_Parser parser)
        : m_parser(parser) {}

    std::vector<ImportedEntry> finish() {
        std::vector<ImportedEntry> entries;
        entries.reserve(m_entries.size());
        for (PendingEntry& pending : m_entries) {
            bool inRecycleBin = false;
            for (const std::string& uuid : pending.groupUuids) {
                inRecycleBin |= !m_recycleBinUuid.empty() && uuid == m_recycleBinUuid;
            }
            if (inRecycleBin) {
                continue;
            }
            entries.push_back(std::move(pending.entry));
        }
        return entries;
    }

    std::string m_error; // set when the handlers stop the parser

    void start(std::string_view name, const XML_Char** attributes) {
        if (m_depth++ == 0) {
            if (name != "KeePassFile") {
                stop("this XML is not a KeePass export: its root element is <" + std::string(name) +
                     ">");
                return;
            }
        }
        m_text.clear();
        if (m_historyDepth > 0) {
            if (++m_historyDepth == 2 && name == "Entry") {
                m_current->history.emplace_back();
            }
            return;
        }
        if (name == "History" && m_current) {
            m_historyDepth = 1;
            return;
        }
        if (name == "Group") {
            m_groups.emplace_back();
            m_groupChildDepth.push_back(m_depth);
        } else if (name == "Entry") {
            m_current = std::make_unique<PendingEntry>();
            m_current->entry = ImportedEntry::at(XML_GetCurrentLineNumber(m_parser));
            m_entryDepth = m_depth;
            for (std::size_t i = 1; i < m_groups.size(); ++i) {
                m_current->entry.groups.push_back(m_groups[i].name);
            }
            for (const Group& group : m_groups) {
                m_current->groupUuids.push_back(group.uuid);
            }
        } else if (name == "String" && m_current) {
            m_key.clear();
            m_isProtected = false;
            m_protectInMemory = false;
        } else if (name == "Value" && m_current) {
            for (const XML_Char** a = attributes; *a; a += 2) {
                const std::string_view attribute = a[0];
                const bool isTrue = ImportText::isTrue(a[1]);
                if (attribute == "Protected") {
                    m_isProtected = isTrue;
                } else if (attribute == "ProtectInMemory") {
                    m_protectInMemory = isTrue;
                }
            }
        }
    }

    void end(std::string_view name) {
        const int depth = m_depth--;
        if (m_historyDepth > 0) {
            historyEnd(name);
            --m_historyDepth;
            return;
        }
        if (name == "RecycleBinUUID" && depth == 3) {
            m_recycleBinUuid = m_text;
        } else if (name == "Group") {
            m_groups.pop_back();
            m_groupChildDepth.pop_back();
        } else if (!m_current && !m_groupChildDepth.empty() &&
                   depth == m_groupChildDepth.back() + 1) {
            // A group's own UUID and Name, which come before its entries.
            if (name == "UUID") {
                m_groups.back().uuid = m_text;
            } else if (name == "Name") {
                m_groups.back().name = m_text;
            }
        } else if (m_current) {
            entryEnd(name, depth);
        }
        m_text.clear();
    }

    void text(std::string_view data) { m_text.append(data); }

    void stop(std::string message) {
        m_error = std::move(message);
        XML_StopParser(m_parser, XML_FALSE);
    }

private:
    void entryEnd(std::string_view name, int depth) {
        PendingEntry& pending = *m_current;
        ImportedEntry& entry = pending.entry;
        if (name == "Key") {
            m_key = m_text;
        } else if (name == "Value") {
            m_value = m_text;
        } else if (name == "String") {
            if (m_isProtected && pending.protectedKey.empty()) {
                pending.protectedKey = m_key;
            }
            takeString(entry);
        } else if (name == "Tags" && depth == m_entryDepth + 1) {
            entry.record.tags = ImportText::tags(m_text);
        } else if (name == "CreationTime") {
            readDate(pending, name, entry.createdAt);
        } else if (name == "LastModificationTime") {
            readDate(pending, name, entry.updatedAt);
        } else if (name == "ExpiryTime") {
            pending.expiryTime = m_text;
        } else if (name == "Expires") {
            pending.expires = ImportText::isTrue(m_text);
        } else if (name == "Entry" && depth == m_entryDepth) {
            completeEntry(pending);
            m_entries.push_back(std::move(pending));
            m_current.reset();
        }
    }

    // A past version counts only for when the password was set; nothing else of it is taken.
    void historyEnd(std::string_view name) {
        if (m_historyDepth < 3 || m_current->history.empty()) {
            return;
        }
        PastVersion& version = m_current->history.back();
        if (name == "Key") {
            m_key = m_text;
        } else if (name == "Value" && m_key == "Password") {
            version.password = m_text;
        } else if (name == "LastModificationTime") {
            version.modified = m_text;
        }
        m_text.clear();
    }

    void takeString(ImportedEntry& entry) {
        if (m_key == "Title") {
            entry.record.title = m_value;
        } else if (m_key == "UserName") {
            entry.record.username = m_value;
        } else if (m_key == "Password") {
            entry.password = m_value;
        } else if (m_key == "URL") {
            entry.record.loginURL = m_value;
        } else if (m_key == "Notes") {
            entry.record.notes = m_value;
        } else if (m_key == "otp") {
            entry.totp = m_value;
        } else if (!m_value.empty()) {
            entry.fields.push_back({m_key, m_value, m_protectInMemory});
        }
        m_value.clear();
    }

    void readDate(PendingEntry& pending, std::string_view name, std::optional<Instant>& into) {
        into = ImportDate::keepass(m_text);
        if (!into && !m_text.empty() && pending.badDate.empty()) {
            pending.badDate = std::string(name) + " \"" + m_text + "\"";
        }
    }

    // The password was set by the oldest version in the unbroken run of versions, ending with
    // the entry itself, that all have it: an entry whose notes changed later still has an old
    // password. Without a history the entry's last change is all there is to go by.
    static void datePassword(PendingEntry& pending) {
        ImportedEntry& entry = pending.entry;
        for (auto version = pending.history.rbegin(); version != pending.history.rend();
             ++version) {
            const std::optional<Instant> modified = ImportDate::keepass(version->modified);
            if (version->password != entry.password || !modified) {
                break;
            }
            entry.passwordChangedAt = modified;
        }
    }

    void completeEntry(PendingEntry& pending) {
        ImportedEntry& entry = pending.entry;
        datePassword(pending);
        const std::string where = "line " + std::to_string(entry.line) + ": ";
        if (pending.expires.value_or(false)) {
            entry.record.expirationDate = ImportDate::keepass(pending.expiryTime);
            if (!entry.record.expirationDate && pending.badDate.empty()) {
                pending.badDate = "ExpiryTime \"" + pending.expiryTime + "\"";
            }
        }
        if (!pending.protectedKey.empty()) {
            entry.rejection = where + "its " + pending.protectedKey +
                              " is encrypted by the database (Protected=\"True\"); export the "
                              "database again as KeePass XML";
        } else if (!pending.badDate.empty()) {
            entry.rejection = where + pending.badDate + " is not a date";
        }
    }

    XML_Parser m_parser;
    int m_depth = 0;
    int m_historyDepth = 0; // inside an entry's History: everything there is skipped
    int m_entryDepth = 0;
    std::vector<Group> m_groups;
    std::vector<int> m_groupChildDepth; // the depth of each open Group element
    std::string m_recycleBinUuid;
    std::unique_ptr<PendingEntry> m_current;
    std::vector<PendingEntry> m_entries;
    std::string m_text;
    std::string m_key;
    std::string m_value;
    bool m_isProtected = false;
    bool m_protectInMemory = false;
};

struct ParserDeleter {
    void operator()(XML_ParserStruct* parser) const { XML_ParserFree(parser); }
};

} // namespace

bool KeePassXmlReader::recognizes(std::string_view text) {
    return text.starts_with("<") && text.substr(0, 4096).find("<KeePassFile") != std::string::npos;
}

Result<std::vector<ImportedEntry>, std::string> KeePassXmlReader::read(std::string_view text) {
    if (text.size() > static_cast<std::size_t>(INT_MAX)) {
        return std::string("the XML is too large");
    }
    std::unique_ptr<XML_ParserStruct, ParserDeleter> xml(XML_ParserCreate("UTF-8"));
    if (!xml) {
        return std::string("out of memory");
    }
    Parser parser(xml.get());
    XML_SetUserData(xml.get(), &parser);
    XML_SetElementHandler(
        xml.get(),
        [](void* self, const XML_Char* name, const XML_Char** attributes) {
            static_cast<Parser*>(self)->start(name, attributes);
        },
        [](void* self, const XML_Char* name) { static_cast<Parser*>(self)->end(name); });
    XML_SetCharacterDataHandler(xml.get(), [](void* self, const XML_Char* data, int length) {
        static_cast<Parser*>(self)->text(std::string_view(data, static_cast<std::size_t>(length)));
    });
    // An export has no DTD. Refusing any means no entity can be declared, so none can expand
    // (the "billion laughs") and none can name an outside file.
    XML_SetStartDoctypeDeclHandler(xml.get(), [](void* self, const XML_Char*, const XML_Char*,
                                                 const XML_Char*, int) {
        static_cast<Parser*>(self)->stop("the file declares a DTD, which a KeePass export never "
                                         "has");
    });
    XML_SetParamEntityParsing(xml.get(), XML_PARAM_ENTITY_PARSING_NEVER);
    const XML_Status status =
        XML_Parse(xml.get(), text.data(), static_cast<int>(text.size()), XML_TRUE);
    if (status != XML_STATUS_OK) {
        const auto line = XML_GetCurrentLineNumber(xml.get());
        const auto column = XML_GetCurrentColumnNumber(xml.get());
        const std::string where =
            "line " + std::to_string(line) + ", column " + std::to_string(column + 1) + ": ";
        if (!parser.m_error.empty()) {
            return where + parser.m_error;
        }
        const XML_Error code = XML_GetErrorCode(xml.get());
        std::string reason = XML_ErrorString(code);
        if (code == XML_ERROR_NO_ELEMENTS || code == XML_ERROR_UNCLOSED_TOKEN ||
            code == XML_ERROR_PARTIAL_CHAR) {
            reason += " (the file ends too early: is it cut short?)";
        }
        return where + "the XML is damaged: " + reason;
    }
    return parser.finish();
}

} // namespace vorlane
