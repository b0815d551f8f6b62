// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

namespace vorlane {

class AppState;
class DataStore;
struct PaymentRecord;
struct ServiceRecord;
class UserCalendar;

// What every screen can do to one service, in one place: the renewal screen, the service detail,
// the organization detail and the service rows' menu all call these. Main thread only; the store,
// state and calendar must outlive it.
class ServiceActions {
public:
    ServiceActions(DataStore& store, AppState& state, const UserCalendar& calendar);

    // Moves the expiration date one billing period ahead in the user's calendar (a year for
    // one-time, none and unknown cycles; 31 January plus a month is the end of February), sets
    // the renewal date and `updatedAt` to now and the status to active, records what the renewal
    // cost (a payment of the service's charge per period, paid now, covering the old expiration
    // date to the new one), and saves. Returns that payment, owned by the store. A service
    // without an expiration date is left alone, and nothing is returned.
    PaymentRecord* markRenewed(ServiceRecord& service) const;
    // What the window says after a renewal: "Renewed until <new expiration date> — <amount>
    // recorded".
    static std::string renewalNotice(const PaymentRecord& payment, const UserCalendar& calendar);

    // Archive: hidden from every list but the archive, status archived. Restore: back to active.
    // Both rely on the store's autosave.
    void archive(ServiceRecord& service) const;
    void restore(ServiceRecord& service) const;

    // Opens the service form on this service.
    void edit(ServiceRecord& service) const;

    // A copy in the same organization: every field the same but the title (followed by
    // " (Copy)"), a fresh id, status active and not archived, created and updated now, and the
    // password and API key stored under fresh identifiers (both always made), and the one-time
    // code secret under a fresh one when the source has one. Saves and
    // shows the copy, in no organization when the source has none. Nothing (and nothing stored)
    // when the secret store refuses a secret.
    ServiceRecord* duplicate(const ServiceRecord& source) const;

    // "This will permanently delete "<title>" and its secrets. This cannot be undone."
    static std::string deleteConfirmationMessage(const ServiceRecord& service);
    // Removes the service's secrets, then the record, saves, and drops every reference the
    // navigation state held to it. `service` is invalid afterwards.
    void deleteService(ServiceRecord& service) const;

private:
    DataStore& m_store;
    AppState& m_state;
    const UserCalendar& m_calendar;
};

} // namespace vorlane
