// SPDX-License-Identifier: GPL-3.0-or-later
#include "MainWindow.h"
#include "ScreenFixture.h"
#include "WidgetLookup.h"
#include "backup/BackupFile.h"
#include "backup/BackupSnapshot.h"
#include "model/Organization.h"
#include "model/ServiceRecord.h"
#include "screens/BackupSheet.h"
#include "screens/ImportSheet.h"
#include "screens/OrganizationFormSheet.h"
#include "screens/RestoreSheet.h"
#include "screens/ServiceFormSheet.h"
#include "screens/ShareSheet.h"
#include "screens/SidebarView.h"
#include "screens/SmartPasteSheet.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAbstractSlider>
#include <QAbstractSpinBox>
#include <QAccessible>
#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QDialog>
#include <QGuiApplication>
#include <QLineEdit>
#include <QListView>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QTabBar>
#include <QTextEdit>

#include <algorithm>
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

// The stops Tab visits in `sheet`, from its first, in order.
QList<QWidget*> tabStops(QWidget& sheet) {
    QList<QWidget*> stops;
    for (QWidget* widget = sheet.nextInFocusChain(); widget != &sheet;
         widget = widget->nextInFocusChain()) {
        if (widget->isVisible() && widget->isEnabled() && widget->focusProxy() == nullptr &&
            (widget->focusPolicy() & Qt::TabFocus) != 0 && sheet.isAncestorOf(widget)) {
            stops.append(widget);
        }
    }
    return stops;
}

QString accessibleName(QWidget* widget) {
    QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(widget);
    return accessible != nullptr ? accessible->text(QAccessible::Name) : QString();
}

// Tab goes the way a person reads the sheet: down the page, and left to right along a row. A
// stop that lies above the previous one, or left of it on the same row, is a jump that the
// layout does not show.
void expectReadingOrder(QWidget& sheet, const QString& name) {
    QList<QWidget*> stops = tabStops(sheet);
    ASSERT_GT(stops.size(), 1) << name.toStdString();
    // Tab goes round: the walk starts at the stop a person reads first (the highest, then the
    // leftmost), so that only the wrap from the last stop back to it goes up.
    const auto readFirst =
        std::min_element(stops.begin(), stops.end(), [&](QWidget* a, QWidget* b) {
            const QPoint pa = a->mapTo(&sheet, QPoint(0, 0));
            const QPoint pb = b->mapTo(&sheet, QPoint(0, 0));
            return std::pair(pa.y(), pa.x()) < std::pair(pb.y(), pb.x());
        });
    const qsizetype start = std::distance(stops.begin(), readFirst);
    stops = stops.mid(start) + stops.first(start);
    QString order;
    for (QWidget* stop : stops) {
        order += QStringLiteral("\n  ") + accessibleName(stop);
    }
    // The nearest scrolling ancestor: the contents of a scroll area are laid out on their own
    // page, so only stops on the same page are compared by place.
    auto page = [](const QWidget* widget) {
        for (const QWidget* parent = widget->parentWidget(); parent != nullptr;
             parent = parent->parentWidget()) {
            if (qobject_cast<const QAbstractScrollArea*>(parent) != nullptr) {
                return parent;
            }
        }
        return static_cast<const QWidget*>(nullptr);
    };
    for (qsizetype i = 1; i < stops.size(); ++i) {
        if (page(stops[i - 1]) != page(stops[i])) {
            continue;
        }
        const QRect before(stops[i - 1]->mapTo(&sheet, QPoint(0, 0)), stops[i - 1]->size());
        const QRect after(stops[i]->mapTo(&sheet, QPoint(0, 0)), stops[i]->size());
        const bool sameRow = after.top() < before.bottom() && before.top() < after.bottom();
        const bool forward =
            sameRow ? after.left() >= before.right() : after.top() >= before.bottom();
        EXPECT_TRUE(forward) << name.toStdString() << ": Tab goes from \""
                             << accessibleName(stops[i - 1]).toStdString() << "\" to \""
                             << accessibleName(stops[i]).toStdString() << "\"; the order is"
                             << order.toStdString();
    }
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

TEST_F(AccessibilityTest, TheSheetsTabInReadingOrderAndTheirLaterStepsAreNamed) {
    m_state.setEditingService(&m_mail);
    ServiceFormSheet form(context());
    form.show();
    expectEverythingNamed(form, QStringLiteral("service form, editing"));
    expectReadingOrder(form, QStringLiteral("service form"));

    m_state.setEditingOrganization(&m_acme);
    OrganizationFormSheet organizationForm(context());
    organizationForm.show();
    expectEverythingNamed(organizationForm, QStringLiteral("organization form, editing"));
    expectReadingOrder(organizationForm, QStringLiteral("organization form"));

    SmartPasteSheet paste(context(), &m_acme);
    paste.show();
    expectReadingOrder(paste, QStringLiteral("smart paste, paste step"));
    QGuiApplication::clipboard()->setText(
        QStringLiteral("Host: files.example\nUsername: deploy\nPassword: pw-123\n"));
    QTest::mouseClick(buttonTitled(paste, QStringLiteral("Paste from Clipboard")), Qt::LeftButton);
    QTest::mouseClick(buttonTitled(paste, QStringLiteral("Parse")), Qt::LeftButton);
    ASSERT_EQ(paste.flow().step(), SmartPasteFlow::Step::review);
    expectEverythingNamed(paste, QStringLiteral("smart paste, review step"));
    expectReadingOrder(paste, QStringLiteral("smart paste, review step"));

    ShareSheet share(context(), m_acme, m_acme.services);
    share.show();
    expectReadingOrder(share, QStringLiteral("share, choose step"));
    share.findChild<QListWidget*>()->item(0)->setCheckState(Qt::Checked);
    QTest::mouseClick(buttonTitled(share, QStringLiteral("Next")), Qt::LeftButton);
    for (QCheckBox* box : share.findChildren<QCheckBox*>()) {
        box->setChecked(true); // every option shown, the export password among them
    }
    expectEverythingNamed(share, QStringLiteral("share, configure step"));
    expectReadingOrder(share, QStringLiteral("share, configure step"));
    QTest::mouseClick(buttonTitled(share, QStringLiteral("Review")), Qt::LeftButton);
    expectEverythingNamed(share, QStringLiteral("share, review step"));
    expectReadingOrder(share, QStringLiteral("share, review step"));

    ImportSheet import(context());
    import.show();
    expectEverythingNamed(import, QStringLiteral("import, file step"));
    expectReadingOrder(import, QStringLiteral("import, file step"));
    import.chooseFile(QStringLiteral(VORLANE_TEST_DATA "/../../import/lastpass.csv"));
    ASSERT_EQ(import.flow().step(), ImportFlow::Step::preview);
    expectEverythingNamed(import, QStringLiteral("import, preview step"));
    expectReadingOrder(import, QStringLiteral("import, preview step"));
    QTest::mouseClick(buttonTitled(import, QStringLiteral("Import")), Qt::LeftButton);
    ASSERT_TRUE(waitFor([&] { return import.flow().step() == ImportFlow::Step::done; }));
    expectEverythingNamed(import, QStringLiteral("import, summary"));
}

// Presses Tab until `reached` holds for the focused widget, at most a window's worth of stops.
bool tabUntil(const std::function<bool(QWidget*)>& reached) {
    for (int i = 0; i < 60; ++i) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        if (QApplication::focusWidget() != nullptr && reached(QApplication::focusWidget())) {
            return true;
        }
    }
    return false;
}

TEST_F(AccessibilityTest, TheMainWindowWorksFromTheKeyboardAlone) {
    MainWindow window(context());
    window.show();
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    auto* sidebar = window.findChild<SidebarView*>();
    ASSERT_NE(sidebar, nullptr);

    QTest::keyClick(QApplication::focusWidget(), Qt::Key_F, Qt::ControlModifier);
    EXPECT_EQ(QApplication::focusWidget(), window.searchField());
    QTest::keyClick(window.searchField(), Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(), sidebar->list()) << "Tab from the search field";
    EXPECT_TRUE(tabUntil([&](QWidget* focus) {
        return window.detailScreen()->isAncestorOf(focus);
    })) << "Tab never reaches the detail pane";

    // The sidebar: arrows walk the destinations, Return on an organization opens it.
    sidebar->list()->setFocus(Qt::TabFocusReason);
    QListView* rows = sidebar->list();
    auto currentText = [rows] {
        return rows->currentIndex().data(Qt::DisplayRole).toString();
    };
    for (int i = 0; i < 20 && currentText() != QStringLiteral("Organizations"); ++i) {
        QTest::keyClick(rows, Qt::Key_Down);
    }
    ASSERT_EQ(currentText(), QStringLiteral("Organizations"));
    QTest::keyClick(rows, Qt::Key_Return);
    EXPECT_EQ(window.detailRoute(), DetailScreen::organizationGrid);
    for (int i = 0; i < 20 && currentText() != QStringLiteral("Acme Studio"); ++i) {
        QTest::keyClick(rows, Qt::Key_Down);
    }
    ASSERT_EQ(currentText(), QStringLiteral("Acme Studio"));
    QTest::keyClick(rows, Qt::Key_Return);
    EXPECT_EQ(m_state.selectedOrganization(), &m_acme);
    EXPECT_EQ(window.detailRoute(), DetailScreen::organizationDetail);

    // The grid: Tab into the cards, Return on the first opens its organization.
    m_state.showOrganizations();
    QApplication::processEvents();
    ASSERT_EQ(window.detailRoute(), DetailScreen::organizationGrid);
    rows->setFocus(Qt::TabFocusReason);
    ASSERT_TRUE(
        tabUntil([](QWidget* focus) { return qobject_cast<QListView*>(focus) != nullptr; }));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    EXPECT_EQ(m_state.selectedOrganization(), &m_acme) << "Return on an organization card";
    QApplication::processEvents();

    // The organization's overview: Tab into its service list, Return opens the service.
    ASSERT_EQ(window.detailRoute(), DetailScreen::organizationDetail);
    ASSERT_TRUE(tabUntil([&](QWidget* focus) {
        return qobject_cast<QListView*>(focus) != nullptr &&
               window.detailScreen()->isAncestorOf(focus);
    }));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    EXPECT_NE(m_state.selectedService(), nullptr) << "Return on a service row";
    QApplication::processEvents();
    EXPECT_EQ(window.detailRoute(), DetailScreen::serviceDetail);
}

// Each step of the back-up and the restore sheets, errors shown, with real PAM and a backup of
// the fixture's vault (sealed at the least key-derivation cost, so that it opens quickly).
TEST_F(AccessibilityTest, TheBackupAndRestoreSheetsAreNamedAndReadInOrderAtEveryStep) {
    connectAuthentication();
    m_person.willType(userPassword);
    BackupSheet backup(context());
    backup.show();
    expectEverythingNamed(backup, QStringLiteral("back up, authentication step"));
    QTest::mouseClick(buttonTitled(backup, QStringLiteral("Authenticate")), Qt::LeftButton);
    ASSERT_TRUE(waitFor([&] { return backup.flow().step() == BackupFlow::Step::password; }));
    QTest::keyClicks(childNamed<QLineEdit>(backup, QStringLiteral("Backup password")),
                     QStringLiteral("short"));
    QTest::keyClicks(childNamed<QLineEdit>(backup, QStringLiteral("Repeat backup password")),
                     QStringLiteral("other"));
    expectEverythingNamed(backup, QStringLiteral("back up, password step"));
    expectReadingOrder(backup, QStringLiteral("back up, password step"));

    const std::string path = m_folder.filePath(QStringLiteral("a11y.vorlanebackup")).toStdString();
    const std::optional<BackupContents> contents = BackupSnapshot::take(store(), m_clock.now());
    ASSERT_TRUE(contents.has_value());
    ASSERT_FALSE(BackupFile::write(path, *contents, "violet tractor harbour 1947",
                                   {.memoryKiB = 64, .passes = 1, .lanes = 1}));
    RestoreSheet restore(context());
    restore.show();
    expectEverythingNamed(restore, QStringLiteral("restore, file step"));
    restore.chooseFile(QString::fromStdString(path));
    ASSERT_EQ(restore.flow().step(), RestoreFlow::Step::password);
    QTest::keyClicks(childNamed<QLineEdit>(restore, QStringLiteral("Backup password")),
                     QStringLiteral("violet tractor harbour 1947"));
    expectEverythingNamed(restore, QStringLiteral("restore, password step"));
    expectReadingOrder(restore, QStringLiteral("restore, password step"));
    QTest::mouseClick(buttonTitled(restore, QStringLiteral("Open")), Qt::LeftButton);
    ASSERT_TRUE(waitFor([&] { return restore.flow().step() == RestoreFlow::Step::summary; }));
    expectEverythingNamed(restore, QStringLiteral("restore, summary step"));
    expectReadingOrder(restore, QStringLiteral("restore, summary step"));
    QTest::mouseClick(buttonTitled(restore, QStringLiteral("Restore")), Qt::LeftButton);
    ASSERT_TRUE(waitFor([&] { return restore.flow().step() == RestoreFlow::Step::done; }));
    expectEverythingNamed(restore, QStringLiteral("restore, result"));
}

} // namespace
} // namespace vorlane::testing
