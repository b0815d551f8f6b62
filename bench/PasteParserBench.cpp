// SPDX-License-Identifier: GPL-3.0-or-later
// Parsing what users paste: a typical 2 KB welcome mail, and 64 KB (a long mail thread or a
// page of notes copied whole), which must still feel instant in the smart-paste sheet.

#include "paste/PasteParser.h"

#include <benchmark/benchmark.h>

#include <string>

namespace {

using vorlane::PasteParser;

// About 2 KB: greeting, labelled access data, prose with dates and links, a signature.
const std::string& welcomeMail() {
    static const std::string text = R"(Hello Maria,

Thank you for choosing Northwind Cloud! Your new virtual server has been set up and is
ready to use. Please keep this message in a safe place: it holds everything you need to
sign in for the first time.

=== Server details ===
Server IP: 203.0.113.42
Hostname: vps-2291.northwind.example
Operating system: Debian 12 (64-bit)
Location: Frankfurt, Germany

=== Access ===
Username: root
Password: Vx7#qLm2pT
Port: 2222

=== Customer area ===
Control panel: https://my.northwind.example/clientarea
Customer number: NW-558120
E-mail on file: billing@acme-shop.example

Your plan renews on 2026-04-15. You can change the billing cycle, add backups or upgrade
the plan in the customer area at any time. Invoices are sent to the address on file about
fourteen days before the renewal date; if you pay by card, the amount is charged on the
renewal date itself.

Getting started
1. Sign in with the credentials above and change the password at once.
2. Add your public key and disable password logins.
3. Keep the system up to date: we recommend unattended upgrades for security fixes.
4. Set up the firewall; only the ports you need should be open.

If you need help, our support team is available around the clock. Reply to this message
or open a ticket at https://help.northwind.example/tickets and mention your customer
number. Average response time last month: 14 minutes.

Planned maintenance for the Frankfurt region is scheduled for 03/21/2026 between 02:00 and
04:00 UTC; your server may be restarted once during that window.

P.S. Reverse DNS for 203.0.113.42 points to vps-2291.northwind.example. To use your own
domain, create an A record for it with the address above and set the reverse entry in the
customer area under Network > Reverse DNS. Changes usually take effect within an hour,
though some resolvers cache old records for up to a day. Snapshots taken before 01/31/2026
are kept for ninety days.

Kind regards,
The Northwind team
Northwind Cloud GmbH, Hafenstrasse 12, 20457 Hamburg
)";
    return text;
}

// 64 KB of the same kind of text: 32 mails one after another, as from a copied thread.
const std::string& thread64k() {
    static const std::string text = [] {
        std::string all;
        while (all.size() < 64 * 1024) {
            all += welcomeMail();
        }
        return all.substr(0, 64 * 1024);
    }();
    return text;
}

void parse(benchmark::State& state, const std::string& text) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(PasteParser::parse(text));
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}

void parseWelcomeMail2k(benchmark::State& state) {
    parse(state, welcomeMail());
}
BENCHMARK(parseWelcomeMail2k)->Unit(benchmark::kMicrosecond);

void parseThread64k(benchmark::State& state) {
    parse(state, thread64k());
}
BENCHMARK(parseThread64k)->Unit(benchmark::kMillisecond);

} // namespace
