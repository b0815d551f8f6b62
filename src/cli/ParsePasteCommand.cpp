#include "ParsePasteCommand.h"

#include "paste/PasteParser.h"

#include <nlohmann/json.hpp>

#include <array>
#include <chrono>
#include <cstdio>
#include <iterator>
#include <ostream>
#include <sstream>

namespace vorlane {

namespace {

constexpr int failed = 1;
constexpr int badUsage = 2;

// "2026-03-15T04:00:00Z"; milliseconds only when there are any. Years outside 0000-9999 get a
// sign and six digits, as ISO 8601's expanded form has them.
std::string isoUtc(Instant instant) {
    using namespace std::chrono;
    const auto day = floor<days>(instant);
    const year_month_day date(day);
    const hh_mm_ss time(instant - day);
    const int year = static_cast<int>(date.year());
    std::array<char, 64> text{};
    int length = std::snprintf(
        text.data(), text.size(),
        year >= 0 && year <= 9999 ? "%04d-%02u-%02uT%02d:%02d:%02d"
                                  : "%+07d-%02u-%02uT%02d:%02d:%02d",
        year, static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
        static_cast<int>(time.hours().count()), static_cast<int>(time.minutes().count()),
        static_cast<int>(time.seconds().count()));
    if (const auto millis = time.subseconds().count(); millis != 0) {
        length +=
            std::snprintf(text.data() + length, text.size() - static_cast<std::size_t>(length),
                          ".%03d", static_cast<int>(millis));
    }
    return std::string(text.data(), static_cast<std::size_t>(length)) + "Z";
}

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
        parsed.detectedDate ? nlohmann::ordered_json(isoUtc(*parsed.detectedDate)) : nullptr;
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
