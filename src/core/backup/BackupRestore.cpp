// SPDX-License-Identifier: GPL-3.0-or-later
#include "backup/BackupRestore.h"

#include "secrets/KeychainManager.h"
#include "store/DataStore.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

namespace vorlane {

namespace {

enum class Action { add, replace, leave };

const std::string refusedToStore =
    "The Secret Service refused to store a secret (is the keyring locked?). Nothing was restored.";

// What the merge does with each record of the backup, decided from the vault as it is.
struct Plan {
    std::vector<Action> organizations;
    std::vector<Action> services;
    // A service's organization when it is in the vault or the backup; otherwise none.
    std::vector<std::optional<Uuid>> owners;
    std::vector<bool> shares;   // added (otherwise left, or dropped with its organization)
    std::vector<bool> payments; // added (otherwise left, or dropped with its service)
    // The accounts of every added or replaced service that the backup holds a secret for,
    // each once, in the backup's order.
    std::vector<std::string> accounts;
    RestoreSummary summary;
};

Action decide(bool inVault, Instant vaultUpdatedAt, Instant backupUpdatedAt) {
    if (!inVault) {
        return Action::add;
    }
    // Only a newer copy replaces: a backup older than the vault's edits never undoes them.
    return backupUpdatedAt > vaultUpdatedAt ? Action::replace : Action::leave;
}

void count(Action action, RestoreSummary& summary) {
    switch (action) {
    case Action::add:
        ++summary.added;
        break;
    case Action::replace:
        ++summary.updated;
        break;
    case Action::leave:
        ++summary.left;
        break;
    }
}

Plan makePlan(const DataStore& store, const BackupContents& contents) {
    Plan plan;
    std::unordered_set<Uuid> organizations;
    for (const Organization& organization : contents.organizations) {
        const Organization* existing = store.organization(organization.id);
        const Action action =
            decide(existing != nullptr, existing ? existing->updatedAt : Instant{},
                   organization.updatedAt);
        plan.organizations.push_back(action);
        count(action, plan.summary);
        organizations.insert(organization.id);
    }
    std::unordered_set<Uuid> services;
    std::unordered_set<std::string> accounts;
    for (const BackedUpService& service : contents.services) {
        const ServiceRecord* existing = store.service(service.record.id);
        const Action action =
            decide(existing != nullptr, existing ? existing->updatedAt : Instant{},
                   service.record.updatedAt);
        plan.services.push_back(action);
        count(action, plan.summary);
        services.insert(service.record.id);
        const bool ownerKnown =
            service.organizationId && (organizations.contains(*service.organizationId) ||
                                       store.organization(*service.organizationId));
        plan.owners.push_back(ownerKnown ? service.organizationId : std::nullopt);
        if (action == Action::leave) {
            continue;
        }
        for (const std::string* account :
             {&service.record.secretKeychainID, &service.record.apiKeyKeychainID,
              &service.record.totpKeychainID}) {
            if (!account->empty() && contents.secrets.contains(*account) &&
                accounts.insert(*account).second) {
                plan.accounts.push_back(*account);
            }
        }
    }
    plan.summary.secretsWritten = plan.accounts.size();

    // Shares and payments have no time of change: one the vault has is left as it is. One whose
    // owner is in neither the vault nor the backup has nowhere to go and is dropped.
    std::unordered_set<Uuid> vaultShares;
    std::unordered_set<Uuid> vaultPayments;
    for (const Organization* organization : store.fetchOrganizations(/*includeArchived=*/true)) {
        for (const ShareRecord* share : organization->shareHistory) {
            vaultShares.insert(share->id);
        }
    }
    if (!contents.payments.empty()) {
        for (const ServiceRecord* service : store.fetchAllServices(/*includeArchived=*/true)) {
            for (const PaymentRecord* payment : store.fetchPayments(*service)) {
                vaultPayments.insert(payment->id);
            }
        }
    }
    for (const BackedUpShare& share : contents.shares) {
        const bool ownerKnown = organizations.contains(share.organizationId) ||
                                store.organization(share.organizationId);
        const bool add = ownerKnown && !vaultShares.contains(share.record.id);
        plan.shares.push_back(add);
        if (ownerKnown) {
            count(add ? Action::add : Action::leave, plan.summary);
        }
    }
    for (const BackedUpPayment& payment : contents.payments) {
        const bool ownerKnown =
            services.contains(payment.serviceId) || store.service(payment.serviceId);
        const bool add = ownerKnown && !vaultPayments.contains(payment.record.id);
        plan.payments.push_back(add);
        if (ownerKnown) {
            count(add ? Action::add : Action::leave, plan.summary);
        }
    }
    return plan;
}

} // namespace

struct BackupRestore::State {
    State(DataStore& target, BackupContents backup)
        : store(target)
        , contents(std::move(backup)) {}

    DataStore& store;
    BackupContents contents;
    Plan plan;
    // The values the accounts about to be written had before, read on the first step; an
    // account without an earlier item is absent.
    std::optional<std::unordered_map<std::string, SecretBytes>> earlier;
    // Accounts [0, touched) may have changed in the secret store: `written` of them were written,
    // and the rest of a step that failed may have been written in part, or lost their earlier
    // item to a save's delete.
    std::size_t touched = 0;
    std::size_t written = 0;
    bool finished = false;
    std::optional<std::string> error;
    RestoreSummary summary;

    // Gives back every touched account its earlier value (or removes it), then finishes with
    // `reason`, saying so when the secret store would not take something back.
    void fail(std::string reason) {
        std::size_t notUndone = 0;
        KeychainManager& keychain = store.keychain();
        for (std::size_t i = 0; i < touched; ++i) {
            const std::string& account = plan.accounts[i];
            const auto before = earlier->find(account);
            const bool undone = before != earlier->end() ? keychain.save(before->second, account)
                                                         : keychain.remove(account);
            notUndone += undone ? 0 : 1;
        }
        if (notUndone > 0) {
            reason += " " + std::to_string(notUndone) + (notUndone == 1 ? " secret" : " secrets") +
                      " written by the restore could not be taken back out of the Secret "
                      "Service.";
        }
        error = std::move(reason);
        finished = true;
    }

    RecordBatch batch() {
        RecordBatch records;
        for (std::size_t i = 0; i < contents.organizations.size(); ++i) {
            if (plan.organizations[i] != Action::leave) {
                records.organizations.push_back(std::move(contents.organizations[i]));
            }
        }
        for (std::size_t i = 0; i < contents.services.size(); ++i) {
            if (plan.services[i] != Action::leave) {
                records.services.push_back(
                    {std::move(contents.services[i].record), plan.owners[i]});
            }
        }
        for (std::size_t i = 0; i < contents.shares.size(); ++i) {
            if (plan.shares[i]) {
                records.shares.push_back(
                    {std::move(contents.shares[i].record), contents.shares[i].organizationId});
            }
        }
        for (std::size_t i = 0; i < contents.payments.size(); ++i) {
            if (plan.payments[i]) {
                records.payments.push_back(
                    {std::move(contents.payments[i].record), contents.payments[i].serviceId});
            }
        }
        return records;
    }
};

BackupRestore::BackupRestore(DataStore& store, BackupContents contents)
    : m_state(std::make_unique<State>(store, std::move(contents))) {
    m_state->plan = makePlan(store, m_state->contents);
}

BackupRestore::~BackupRestore() = default;

RestoreSummary BackupRestore::forecast() const {
    return makePlan(m_state->store, m_state->contents).summary;
}

bool BackupRestore::step(std::size_t count) {
    State& state = *m_state;
    if (state.finished) {
        return false;
    }
    KeychainManager& keychain = state.store.keychain();
    const std::vector<std::string>& accounts = state.plan.accounts;
    if (!state.earlier) {
        state.earlier = accounts.empty() ? std::unordered_map<std::string, SecretBytes>()
                                         : keychain.readMany(accounts);
        if (!state.earlier) {
            state.earlier.emplace();
            state.fail("The Secret Service could not be read (is the keyring locked?). Nothing "
                       "was restored.");
            return false;
        }
    }
    const std::size_t end =
        std::min(accounts.size(), state.written + std::max<std::size_t>(count, 1));
    // An account that already has an item is replaced through a save, which deletes every item
    // of the account first; the others (on a new machine, all of them) are added together.
    std::vector<std::pair<std::string, SecretBytes>> fresh;
    state.touched = end;
    for (std::size_t i = state.written; i < end; ++i) {
        const std::string& account = accounts[i];
        const std::string& secret = state.contents.secrets.at(account);
        SecretBytes value(secret.begin(), secret.end());
        if (!state.earlier->contains(account)) {
            fresh.emplace_back(account, std::move(value));
        } else if (!keychain.save(value, account)) {
            state.fail(refusedToStore);
            return false;
        }
    }
    if (!keychain.addMany(fresh)) {
        state.fail(refusedToStore);
        return false;
    }
    state.written = end;
    if (state.written < accounts.size()) {
        return true;
    }
    // Every secret is in place: the records follow in one save, so that a record never names a
    // secret that is not there.
    if (const auto failed = state.store.saveBatch(state.batch())) {
        state.fail("The vault could not be saved (" + *failed + "). Nothing was restored.");
        return false;
    }
    state.summary = state.plan.summary;
    state.finished = true;
    return false;
}

void BackupRestore::cancel() {
    State& state = *m_state;
    if (state.finished) {
        return;
    }
    if (!state.earlier) {
        state.earlier.emplace(); // nothing was touched yet
    }
    state.fail("Cancelled.");
}

std::size_t BackupRestore::done() const {
    return m_state->written;
}

std::size_t BackupRestore::total() const {
    return m_state->plan.accounts.size();
}

bool BackupRestore::finished() const {
    return m_state->finished;
}

const std::optional<std::string>& BackupRestore::error() const {
    return m_state->error;
}

const RestoreSummary& BackupRestore::summary() const {
    return m_state->summary;
}

} // namespace vorlane
