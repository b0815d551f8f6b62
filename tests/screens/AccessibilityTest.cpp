#include "MainWindow.h"
#include "ScreenFixture.h"
#include "model/Organization.h"
#include "model/ServiceRecord.h"
#include "screens/SidebarView.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAbstractSlider>
#include <QAbstractSpinBox>
#include <QAccessible>
#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QLineEdit>
#include <QListView>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QTabBar>
#include <QTextEdit>

#include <chrono>

namespace vorlane::testing {
namespace {

using namespace std::chrono_literals;

// A control a person can reach or operate: anything that takes focus, and the kinds of widget
// that are controls even when a style or a screen gave them no focus.
bool isControl(const QWidget& widget) {
    return widget.focusPolicy() != Qt::NoFocus || qobject_cast<const QAbstractButton*>(&widget) ||
           qobject_cast<const QComboBox*>(&widget) || qobject_cast<const QLineEdit*>(&widget) ||
           qobject_cast<const QAbstractItemView*>(&widget) ||
           qobject_cast<const QTabBar*>(&widget) ||
           qobject_cast<const QAbstractSpinBox*>(&widget) ||
           qobject_cast<const QTextEdit*>(&widget) || qobject_cast<const QPlainTextEdit*>(&widget);
}

// Parts of a composite control that screen readers reach through the control itself: the scroll
// bars of a scroll area, the line edit inside a spin box or an editable combo box, a widget that
// hands its focus to another.
bool isPartOfAnother(const QWidget& widget) {
    if (qobject_cast<const QScrollBar*>(&widget) != nullptr || widget.focusProxy() != nullptr) {
        return true;
    }
    const QWidget* parent = widget.parentWidget();
    return qobject_cast<const QLineEdit*>(&widget) != nullptr && parent != nullptr &&
           (qobject_cast<const QAbstractSpinBox*>(parent) != nullptr ||
            qobject_cast<const QComboBox*>(parent) != nullptr);
}

QString describe(const QWidget& widget) {
    QString text = QString::fromLatin1(widget.metaObject()->className());
    text += QStringLiteral(" \"") + widget.objectName() + QStringLiteral("\"");
    if (!widget.toolTip().isEmpty()) {
        text += QStringLiteral(" tooltip \"") + widget.toolTip() + QStringLiteral("\"");
    }
    if (const QWidget* parent = widget.parentWidget()) {
        text += QStringLiteral(" in ") + QString::fromLatin1(parent->metaObject()->className());
        if (!parent->objectName().isEmpty()) {
            text += QStringLiteral(" \"") + parent->objectName() + QStringLiteral("\"");
        }
    }
    return text;
}

// Every visible control under `root` without an accessible name, and every list whose first row
// says nothing to a screen reader; each failure names the screen it was found on.
void expectEverythingNamed(QWidget& root, const QString& screen) {
    QList<QWidget*> widgets = root.findChildren<QWidget*>();
    widgets.prepend(&root);
    int controls = 0;
    for (QWidget* widget : widgets) {
        if (!widget->isVisible() || !isControl(*widget) || isPartOfAnother(*widget)) {
            continue;
        }
        ++controls;
        QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(widget);
        ASSERT_NE(accessible, nullptr) << describe(*widget).toStdString();
        EXPECT_FALSE(accessible->text(QAccessible::Name).trimmed().isEmpty())
            << screen.toStdString() << ": " << describe(*widget).toStdString()
            << " has no accessible name";

        const auto* view = qobject_cast<QAbstractItemView*>(widget);
        if (view != nullptr && view->model() != nullptr && view->model()->rowCount() > 0) {
            const QModelIndex first = view->model()->index(0, 0, view->rootIndex());
            EXPECT_FALSE(first.data(Qt::AccessibleTextRole).toString().trimmed().isEmpty())
                << screen.toStdString() << ": the first row of " << describe(*view).toStdString()
                << " (\"" << first.data(Qt::DisplayRole).toString().toStdString()
                << "\") has no accessible text";
        }
    }
    EXPECT_GT(controls, 0) << screen.toStdString() << " shows no control at all";
}

class AccessibilityTest : public ScreenFixture {
protected:
    AccessibilityTest()
        : m_acme(addOrganization("Acme Studio", false))
        , m_mail(addService(m_acme, "Mail server", [this](ServiceRecord& s) {
            s.setServiceType(ServiceType::mailbox);
            s.hostname = "mail.acme.test";
            s.username = "admin";
            s.monthlyCost = *Decimal::fromString("12.50");
            s.expirationDate = m_clock.now() + 24h * 5;
            s.secretKeychainID = ServiceRecord::makeSecretKeychainID();
        })) {
        addService(m_acme, "acme.test", [this](ServiceRecord& s) {
            s.setServiceType(ServiceType::domainRegistrar);
            s.expirationDate = m_clock.now() - 24h * 3;
        });
        addService(m_acme, "Old VPS", [](ServiceRecord& s) { s.isArchived = true; });
        addOrganization("Former Client", true);
        if (!store().setPassword("hunter2-pw", m_mail)) {
            ADD_FAILURE() << "cannot store the password";
        }
    }

    // A favourite with a project name, so that the grids show every part of a card.
    Organization& addOrganization(const std::string& name, bool archived) {
        Organization organization = Organization::created(m_clock.now());
        organization.name = name;
        organization.projectName = "Storefront";
        organization.isFavorite = true;
        organization.isArchived = archived;
        return store().insert(std::move(organization));
    }

    // The window's detail pane once the state has settled, checked as `screen`.
    void expectDetailNamed(MainWindow& window, const QString& screen) {
        QApplication::processEvents();
        ASSERT_NE(window.detailScreen(), nullptr) << screen.toStdString();
        expectEverythingNamed(*window.detailScreen(), screen);
    }

    Organization& m_acme;
    ServiceRecord& m_mail;
};

TEST_F(AccessibilityTest, EveryControlOfEveryScreenAndSheetHasAName) {
    MainWindow window(context());
    window.show();
    expectEverythingNamed(window, QStringLiteral("main window"));

    for (const SidebarItem item : SidebarItem::allCases()) {
        m_state.setSelectedSidebarItem(item);
        expectDetailNamed(window, QString::fromUtf8(item.displayName()));
    }

    m_state.setSearchQuery("acme");
    expectDetailNamed(window, QStringLiteral("search"));
    m_state.setSearchQuery("");

    m_state.navigateTo(m_acme);
    for (const OrgDetailTab tab : OrgDetailTab::allCases()) {
        m_state.setSelectedOrgTab(tab);
        expectDetailNamed(window,
                          QStringLiteral("organization, tab ") + QString::fromUtf8(tab.label()));
    }

    m_state.navigateTo(m_mail);
    expectDetailNamed(window, QStringLiteral("service detail"));

    const std::pair<Sheet, QString> sheets[] = {
        {Sheet::newOrganization, QStringLiteral("new organization sheet")},
        {Sheet::newService, QStringLiteral("new service sheet")},
        {Sheet::smartPaste, QStringLiteral("smart paste sheet")},
        {Sheet::shareFlow, QStringLiteral("share sheet")},
        {Sheet::settings, QStringLiteral("settings sheet")},
    };
    for (const auto& [which, name] : sheets) {
        switch (which) {
        case Sheet::newOrganization:
            m_state.setShowingNewOrganization(true);
            break;
        case Sheet::newService:
            m_state.setShowingNewService(true);
            break;
        case Sheet::smartPaste:
            m_state.setShowingSmartPaste(true);
            break;
        case Sheet::shareFlow:
            m_state.startShare(m_acme, {});
            break;
        case Sheet::settings:
            m_state.setShowingSettings(true);
            break;
        }
        QDialog* sheet = window.sheet(which);
        ASSERT_NE(sheet, nullptr) << name.toStdString();
        QApplication::processEvents();
        expectEverythingNamed(*sheet, name);
        sheet->reject();
        QApplication::processEvents();
    }

    window.showSettingsWindow();
    QWidget* settings = QApplication::activeWindow();
    for (QWidget* top : QApplication::topLevelWidgets()) {
        if (top != &window && top->isVisible() &&
            top->windowTitle() == QStringLiteral("Settings")) {
            settings = top;
        }
    }
    ASSERT_NE(settings, nullptr);
    expectEverythingNamed(*settings, QStringLiteral("settings window"));
}

} // namespace
} // namespace vorlane::testing
