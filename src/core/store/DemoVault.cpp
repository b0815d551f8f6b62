// SPDX-License-Identifier: GPL-3.0-or-later
#include "store/DemoVault.h"

#include "store/DataStore.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <random>
#include <string>
#include <string_view>

namespace vorlane {

namespace {

constexpr std::array<std::string_view, 24> companyWords{
    "Acme",    "Northwind", "Bluebird",   "Harbor",  "Maple",     "Summit",
    "Orchard", "Copper",    "Lighthouse", "Granite", "Juniper",   "Meridian",
    "Atlas",   "Willow",    "Falcon",     "Cedar",   "Riverside", "Aurora",
    "Beacon",  "Pioneer",   "Quartz",     "Saffron", "Tidewater", "Evergreen",
};
constexpr std::array<std::string_view, 12> companyKinds{
    "Bakery",  "Studio",     "Dental",  "Legal",  "Coffee",     "Design",
    "Fitness", "Consulting", "Florist", "Motors", "Architects", "Books",
};
constexpr std::array<std::string_view, 8> projects{
    "Website relaunch", "Online shop", "Booking system",   "Intranet",
    "Newsletter",       "Mobile app",  "Support retainer", "",
};
constexpr std::array<std::string_view, 12> firstNames{
    "Anna",  "Ben",  "Chloé", "David", "Elif", "Farid",
    "Greta", "Hiro", "Inès",  "Jonas", "Kira", "Luis",
};
constexpr std::array<std::string_view, 10> providers{
    "Hetzner",   "DigitalOcean", "OVHcloud", "Linode", "Cloudflare",
    "Namecheap", "IONOS",        "Fastmail", "AWS",    "Scaleway",
};
constexpr std::array<std::string_view, 8> tagWords{
    "production", "staging", "client-owned", "legacy", "critical", "shared", "eu", "backup",
};

struct Kind {
    ServiceType type;
    std::string_view title;
    BillingCycle cycle;
    int monthlyCents; // 0 when billed yearly
    int yearlyCents;
};

const std::array<Kind, 14> kinds{{
    {ServiceType::vps, "VPS", BillingCycle::monthly, 1290, 0},
    {ServiceType::dedicatedServer, "Dedicated server", BillingCycle::monthly, 8900, 0},
    {ServiceType::sharedHosting, "Web hosting", BillingCycle::annual, 0, 11988},
    {ServiceType::cpanel, "cPanel", BillingCycle::monthly, 1599, 0},
    {ServiceType::wordpress, "WordPress admin", BillingCycle::none, 0, 0},
    {ServiceType::websiteAdmin, "Website admin", BillingCycle::none, 0, 0},
    {ServiceType::domainRegistrar, "Domain", BillingCycle::annual, 0, 1599},
    {ServiceType::domainRegistrar, "Domain", BillingCycle::biennial, 0, 2998},
    {ServiceType::mailbox, "Mailbox", BillingCycle::monthly, 500, 0},
    {ServiceType::database, "Database", BillingCycle::monthly, 1500, 0},
    {ServiceType::cloudAccount, "Cloud account", BillingCycle::monthly, 4200, 0},
    {ServiceType::sshAccess, "SSH access", BillingCycle::none, 0, 0},
    {ServiceType::ftpAccess, "FTP access", BillingCycle::none, 0, 0},
    {ServiceType::apiKey, "API key", BillingCycle::quarterly, 0, 3600},
}};

template <typename Container> auto pick(std::mt19937_64& random, const Container& items) {
    return items[std::uniform_int_distribution<std::size_t>(0, items.size() - 1)(random)];
}

Decimal cents(int amount) {
    return Decimal(amount).dividedBy(Decimal(100)).value_or(Decimal());
}

std::string slug(std::string_view name) {
    std::string text;
    for (const char c : name) {
        if ((c >= 'a' && c <= 'z') || (c >= '0' && c <= '9')) {
            text += c;
        } else if (c >= 'A' && c <= 'Z') {
            text += static_cast<char>(c - 'A' + 'a');
        }
    }
    return text;
}

std::string randomSecret(std::mt19937_64& random, std::size_t length) {
    static constexpr std::string_view alphabet =
        "ABCDEFGHJKLMNPQRSTUVWXYZabcdefghijkmnopqrstuvwxyz23456789!#%+-_";
    std::string secret;
    for (std::size_t i = 0; i < length; ++i) {
        secret += pick(random, alphabet);
    }
    return secret;
}

} // namespace

void DemoVault::populate(DataStore& store, Instant now, const Options& options) {
    using namespace std::chrono;
    std::mt19937_64 random(options.seed);
    const int organizationCount =
        options.organizations > 0 ? options.organizations : std::max(1, options.services / 100);
    std::vector<Organization*> organizations;
    for (int i = 0; i < organizationCount; ++i) {
        Organization organization = Organization::created(now - hours(24 * (i % 700)));
        organization.name =
            std::string(companyWords[static_cast<std::size_t>(i) % companyWords.size()]) + " " +
            std::string(pick(random, companyKinds));
        if (i >= static_cast<int>(companyWords.size())) {
            organization.name += " " + std::to_string(i / companyWords.size() + 1);
        }
        organization.projectName = pick(random, projects);
        const std::string contact(pick(random, firstNames));
        organization.contactName = contact + " " + std::string(pick(random, companyWords));
        organization.contactEmail = slug(contact) + "@" + slug(organization.name) + ".example";
        organization.contactPhone = "+49 30 " + std::to_string(1000000 + random() % 9000000);
        organization.website = "https://www." + slug(organization.name) + ".example";
        organization.notes = i % 3 == 0 ? "Invoices go to the office manager." : "";
        organization.tags = {std::string(pick(random, tagWords))};
        organization.isActive = i % 11 != 0;
        organization.isArchived = i % 37 == 36;
        organization.isFavorite = i % 9 == 0;
        organizations.push_back(&store.insert(std::move(organization)));
    }
    for (int i = 0; i < options.services; ++i) {
        Organization& owner = *organizations[static_cast<std::size_t>(i) % organizations.size()];
        const Kind& kind = pick(random, kinds);
        const std::string domain = slug(owner.name) + ".example";
        ServiceRecord service = ServiceRecord::created(now - hours(24 * (i % 900)));
        service.setServiceType(kind.type);
        service.title = std::string(kind.title) + " " + std::to_string(i / 7 + 1);
        service.provider = pick(random, providers);
        service.hostname = "srv" + std::to_string(i % 97) + "." + domain;
        service.domain = domain;
        service.ipAddress = "10." + std::to_string(i / 65536 % 256) + "." +
                            std::to_string(i / 256 % 256) + "." + std::to_string(i % 256);
        service.loginURL = "https://panel." + domain + "/login";
        service.username = "admin" + std::to_string(i % 13);
        service.emailAddress = "ops@" + domain;
        if (kind.type == ServiceType::sshAccess || kind.type == ServiceType::ftpAccess) {
            service.port = kind.type == ServiceType::sshAccess ? 22 : 21;
            service.sshKeyReference = "~/.ssh/id_ed25519_" + slug(owner.name);
        }
        service.purchaseDate = service.createdAt;
        // From 60 days ago to about 14 months ahead: some expired, some due, most later.
        service.expirationDate =
            now + minutes(static_cast<std::int64_t>(random() % (60 * 24 * 480))) - hours(24 * 60);
        service.renewalDate = service.expirationDate;
        service.setBillingCycle(kind.cycle);
        service.monthlyCost = cents(kind.monthlyCents);
        service.yearlyCost = cents(kind.yearlyCents);
        service.autoRenew = i % 4 != 0;
        service.tags = {std::string(pick(random, tagWords))};
        service.notes = i % 5 == 0 ? "Renewal invoice goes to the client directly." : "";
        service.setRiskLevel(i % 10 == 0 ? RiskLevel::high : RiskLevel::low);
        service.isArchived = i % 53 == 52;
        service.setStatus(service.isArchived ? ServiceStatus::archived : ServiceStatus::active);
        if (options.withSecrets) {
            service.secretKeychainID = ServiceRecord::makeSecretKeychainID();
            if (kind.type == ServiceType::apiKey || kind.type == ServiceType::cloudAccount) {
                service.apiKeyKeychainID = ServiceRecord::makeAPIKeyKeychainID();
            }
        }
        ServiceRecord& inserted = store.insert(std::move(service), owner);
        if (options.withSecrets) {
            store.setPassword(randomSecret(random, 20), inserted);
            if (!inserted.apiKeyKeychainID.empty()) {
                store.setAPIKey("sk_live_" + randomSecret(random, 32), inserted);
            }
        }
    }
    store.save();
}

} // namespace vorlane
