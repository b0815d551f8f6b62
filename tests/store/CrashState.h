// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The states the crash test walks through. Generation k is reached from k - 1 by one save that
// touches every table: the state organization's large notes, one service per organization, a new
// service, the archiving of an old one and now and then a share record. The child process saves
// them one after another until it is killed; the test checks that the file holds exactly one
// whole generation.

#include "store/DataStore.h"

#include <optional>
#include <string>

namespace vorlane::testing::crash {

inline constexpr int organizations = 5;
inline constexpr const char* stateName = "crash state";

// Large enough that one save spans many pages of the write-ahead log.
inline std::string stateNotes(long generation) {
    return std::to_string(generation) + ":" +
           std::string(20000, static_cast<char>('a' + generation % 26));
}

inline std::string fixedTitle(int organization) {
    return "fixed " + std::to_string(organization);
}

inline std::string generationTitle(long generation) {
    return "generation " + std::to_string(generation);
}

inline Organization* stateOrganization(DataStore& store) {
    for (Organization* organization : store.fetchOrganizations()) {
        if (organization->name == stateName) {
            return organization;
        }
    }
    return nullptr;
}

// The generation the store holds; nothing when it holds none (never set up).
inline std::optional<long> generationOf(DataStore& store) {
    const Organization* state = stateOrganization(store);
    if (!state) {
        return std::nullopt;
    }
    return std::stol(state->notes.substr(0, state->notes.find(':')));
}

// Generation 0: the organizations with one fixed service each.
inline void setUp(DataStore& store, Instant now) {
    Organization state = Organization::created(now);
    state.name = stateName;
    state.notes = stateNotes(0);
    store.insert(std::move(state));
    for (int i = 0; i < organizations; ++i) {
        Organization organization = Organization::created(now);
        organization.name = "org " + std::to_string(i);
        Organization& owner = store.insert(std::move(organization));
        ServiceRecord service = ServiceRecord::created(now);
        service.title = fixedTitle(i);
        service.notes = "0";
        store.insert(std::move(service), owner);
    }
    store.save();
}

// Moves the store from generation - 1 to `generation`, all of it waiting for one save.
inline void advance(DataStore& store, long generation, Instant now) {
    Organization* state = stateOrganization(store);
    state->notes = stateNotes(generation);
    store.noteChanged(*state);
    for (ServiceRecord* service : store.fetchAllServices()) {
        if (service->title.starts_with("fixed ")) {
            service->notes = std::to_string(generation);
            store.noteChanged(*service);
        } else if (service->title == generationTitle(generation - 3)) {
            service->isArchived = true;
            store.noteChanged(*service);
        }
    }
    Organization* owner = store.fetchOrganizations()[generation % organizations];
    ServiceRecord added = ServiceRecord::created(now);
    added.title = generationTitle(generation);
    store.insert(std::move(added), *owner);
    if (generation % 10 == 0) {
        ShareRecord share;
        share.id = Uuid::generate();
        share.recipientLabel = std::to_string(generation);
        share.sharedAt = now;
        store.insert(std::move(share), *state);
    }
}

} // namespace vorlane::testing::crash
