// SPDX-License-Identifier: GPL-3.0-or-later
#include "ParsePasteCommand.h"

#include "paste/PasteParser.h"
#include "util/IsoDate.h"

#include <nlohmann/json.hpp>

#include <iterator>
#include <ostream>
#include <sstream>

namespace vorlane {

namespace {

constexpr int failed = 1;
constexpr int badUsage = 2;

nlohmann::ordered_json toJson(const ParsedCredential& parsed) {
    nlohmann::ordered_json json;
    json["serviceType"] = parsed.serviceType.rawValue();
    json["title"] = parsed.title;
    json["provider"] = parsed.provider;
    json["hostname"] = parsed.hostname;
    json["domain"] = parsed.domain;
    json["ipAddress"] = parsed.ipAddress;
    json["loginURL"] = parsed.loginURL;
    json["username"] = parsed.username;
    json["password"] = parsed.password;
    json["email"] = parsed.email;
    json["portString"] = parsed.portString;
    json["notes"] = parsed.notes;
    json["detectedDate"] =
        parsed.detectedDate ? nlohmann::ordered_json(IsoDate::utc(*parsed.detectedDate)) : nullptr;
    json["detectedTypes"] = parsed.detectedTypes;
    return json;
}

} // namespace

std::string_view ParsePasteCommand::name() const {
    return "parse-paste";
}

std::string_view ParsePasteCommand::usage() const {
    return "parse-paste     parse pasted credential text from stdin, print it as JSON";
}

int ParsePasteCommand::run(CliInvocation& invocation) {
    if (!invocation.arguments.empty()) {
        invocation.err << "vorlane-cli parse-paste: takes no arguments (the text comes from "
                          "standard input), got \""
                       << invocation.arguments.front() << "\"\n";
        return badUsage;
    }
    std::ostringstream input;
    input << invocation.in.rdbuf();
    // An empty input leaves the stream unread and flags it; only a real read error counts.
    if (invocation.in.bad()) {
        invocation.err << "vorlane-cli parse-paste: could not read standard input\n";
        return failed;
    }
    const ParsedCredential parsed = PasteParser::parse(input.view());
    // The parser's texts are valid UTF-8 (ill-formed input became U+FFFD), so nothing is replaced.
    invocation.out << toJson(parsed).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace)
                   << "\n";
    return invocation.out.good() ? 0 : failed;
}

} // namespace vorlane
