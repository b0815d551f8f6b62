// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "screens/ServiceDetailScreen.h"
#include "screens/ServicePayments.h"
#include "util/ScopedConnection.h"

#include <QWidget>

#include <functional>
#include <map>
#include <optional>
#include <vector>

class QLabel;
class QPushButton;
class QToolButton;
class QVBoxLayout;

namespace vorlane {

struct AppContext;
struct ServiceRecord;
class CapsuleLabel;

// The service detail pane: draws a ServiceDetailScreen (header, actions bar, sections of rows)
// and forwards the person's clicks to it, followed by the service's payments (ServicePayments).
// Rows are widgets updated in place while the screen's layout stays the same, so that a button
// keeps the keyboard focus across a reveal or a copy. Main thread; the context outlives it.
class ServiceDetailView : public QWidget {
    Q_OBJECT

public:
    ServiceDetailView(AppContext& context, const ServiceRecord& service, QWidget* parent = nullptr);
    ~ServiceDetailView() override;

    const ServiceDetailScreen& screen() const { return m_screen; }

    // Asks "Delete Service" in a window-modal box; "Delete" deletes.
    void confirmDelete();

private:
    // Hands the login URL to the desktop, or shows why it may not be opened.
    void openAddress();
    struct RowWidgets {
        QLabel* value = nullptr;
        QToolButton* copy = nullptr;
        QToolButton* reveal = nullptr;
    };
    using Layout = std::vector<std::pair<std::string, std::vector<ServiceDetailScreen::Field>>>;

    void buildHeader(QVBoxLayout* layout);
    void buildActions(QVBoxLayout* layout);
    void refresh();
    void rebuildSections(const std::vector<ServiceDetailScreen::Section>& sections);
    QWidget* createRow(const ServiceDetailScreen::Row& row);
    void updateRow(const ServiceDetailScreen::Row& row);
    void buildPayments(QVBoxLayout* layout);
    void refreshPayments();
    QWidget* createPaymentRow(const ServicePayments::Row& row);
    // Asks for an amount and a note in a window-modal sheet; `apply` returns the error to show
    // beside the amount (the sheet stays open then) or nothing, which closes it.
    using PaymentApply =
        std::function<std::optional<std::string>(const std::string&, const std::string&)>;
    void askPayment(const QString& title, const QString& amount, const QString& note,
                    PaymentApply apply);
    void editPayment(const Uuid& id);
    void confirmDeletePayment(const Uuid& id);
    PaymentRecord* paymentWithId(const Uuid& id) const;

    AppContext& m_context;
    ServiceDetailScreen m_screen;
    Uuid m_serviceId;

    QLabel* m_typeIcon;
    QLabel* m_title;
    QLabel* m_subtitle;
    CapsuleLabel* m_badge;
    QPushButton* m_openURL;
    QPushButton* m_markRenewed;
    QLabel* m_message;
    QWidget* m_sectionsHost;
    QVBoxLayout* m_sectionsLayout;
    Layout m_layout;
    std::map<ServiceDetailScreen::Field, RowWidgets> m_rows;

    // Nothing when the service was not in the store as the view opened; left alone once the
    // service has gone from it (deleted, the view about to close).
    std::optional<ServicePayments> m_payments;
    QLabel* m_paymentsTotal = nullptr;
    QVBoxLayout* m_paymentsRows = nullptr;
    // What the rows were drawn from, so that they are rebuilt only when it changed.
    std::vector<std::string> m_paymentsDrawn;

    ScopedConnection m_screenConnection;
    ScopedConnection m_storeConnection;
};

} // namespace vorlane
