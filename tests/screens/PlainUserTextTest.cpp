// SPDX-License-Identifier: GPL-3.0-or-later
// Text a person typed or pasted is shown exactly as typed, everywhere: with HTML in every text
// field of an organization and its service (an image tag among it), every label, message box and
// tooltip of every screen and sheet shows the markup literally, and nothing ever opens the file
// the image tag names. A revealed secret leaves the window only through its copy button.

#include "MainWindow.h"
#include "PasswordPromptDialog.h"
#include "QtText.h"
#include "ScreenFixture.h"
#include "WidgetLookup.h"
#include "components/ServiceContextMenu.h"
#include "model/Organization.h"
#include "model/ServiceRecord.h"
#include "screens/ServiceDetailView.h"
#include "screens/ShareSheet.h"
#include "screens/SidebarView.h"
#include "screens/SmartPasteSheet.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QClipboard>
#include <QDialog>
#include <QFile>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QListWidget>
#include <QMessageBox>
#include <QMimeData>
#include <QTextDocumentFragment>
#include <QTimer>
#include <QToolButton>

#include <sys/inotify.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <set>

namespace vorlane::testing {
namespace {

using namespace std::chrono_literals;

// Counts the times any process opens one file, through inotify: a widget that reads the image
// named by an <img> tag opens it, whatever it then makes of the bytes.
class OpenWatch {
public:
    explicit OpenWatch(const QString& path)
        : m_fd(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
        if (m_fd < 0 || inotify_add_watch(m_fd, QFile::encodeName(path).constData(), IN_OPEN) < 0) {
            ADD_FAILURE() << "cannot watch " << path.toStdString();
        }
    }
    ~OpenWatch() {
        if (m_fd >= 0) {
            close(m_fd);
        }
    }
    OpenWatch(const OpenWatch&) = delete;
    OpenWatch& operator=(const OpenWatch&) = delete;

    // Opens seen since the last call (or since the watch began).
    int newOpens() {
        int opens = 0;
        alignas(inotify_event) std::array<char, 4096> buffer{};
        for (;;) {
            const ssize_t length = read(m_fd, buffer.data(), buffer.size());
            if (length <= 0) {
                return opens;
            }
            for (ssize_t offset = 0; offset < length;) {
                const auto* event = reinterpret_cast<const inotify_event*>(buffer.data() + offset);
                opens += (event->mask & IN_OPEN) != 0 ? 1 : 0;
                offset += static_cast<ssize_t>(sizeof(inotify_event) + event->len);
            }
        }
    }

private:
    int m_fd;
};

// What a person reads in a widget that shows `text` in `format`: Qt's AutoText renders text that
// looks like HTML as HTML, exactly as a label, a message box or a tooltip does.
QString shownText(const QString& text, Qt::TextFormat format) {
    const bool rich =
        format == Qt::RichText || (format == Qt::AutoText && Qt::mightBeRichText(text));
    return rich ? QTextDocumentFragment::fromHtml(text).toPlainText() : text;
}

class PlainUserTextTest : public ScreenFixture {
protected:
    PlainUserTextTest() {
        // A real image, so that a widget that follows the tag would load and draw it.
        QImage image(4, 4, QImage::Format_RGB32);
        image.fill(Qt::red);
        if (!image.save(m_imagePath, "PNG")) {
            ADD_FAILURE() << "cannot write " << m_imagePath.toStdString();
        }
        m_watch = std::make_unique<OpenWatch>(m_imagePath);
    }

    // The value typed into `field`: markup naming the field, then the image tag.
    std::string html(const std::string& field) const {
        return "<b>" + field + "</b>" + m_imageTag.toStdString();
    }

    Organization& addHostileOrganization() {
        Organization organization = Organization::created(m_clock.now());
        for (auto [member, field] : {std::pair{&Organization::name, "name"},
                                     {&Organization::projectName, "projectName"},
                                     {&Organization::contactName, "contactName"},
                                     {&Organization::contactEmail, "contactEmail"},
                                     {&Organization::contactPhone, "contactPhone"},
                                     {&Organization::website, "website"},
                                     {&Organization::notes, "organizationNotes"}}) {
            organization.*member = html(field);
        }
        organization.tags = {html("organizationTag")};
        organization.isFavorite = true;
        return store().insert(std::move(organization));
    }

    ServiceRecord& addHostileService(Organization& owner) {
        ServiceRecord& service = addService(owner, html("title"), [this](ServiceRecord& s) {
            for (auto [member, field] : {std::pair{&ServiceRecord::provider, "provider"},
                                         {&ServiceRecord::hostname, "hostname"},
                                         {&ServiceRecord::domain, "domain"},
                                         {&ServiceRecord::ipAddress, "ipAddress"},
                                         {&ServiceRecord::loginURL, "loginURL"},
                                         {&ServiceRecord::username, "username"},
                                         {&ServiceRecord::emailAddress, "emailAddress"},
                                         {&ServiceRecord::sshKeyReference, "sshKeyReference"},
                                         {&ServiceRecord::notes, "notes"}}) {
                s.*member = html(field);
            }
            s.tags = {html("serviceTag")};
            s.expirationDate = m_clock.now() + 24h * 5;
            s.secretKeychainID = ServiceRecord::makeSecretKeychainID();
            s.apiKeyKeychainID = ServiceRecord::makeAPIKeyKeychainID();
        });
        if (!store().setPassword(html("password"), service) ||
            !store().setAPIKey(html("apiKey"), service)) {
            ADD_FAILURE() << "cannot store the secrets";
        }
        return service;
    }

    // Every label and tooltip showing user text under `root` (the root included) shows it
    // literally; returns the fields whose text was seen, for the caller to check what the screen
    // is meant to show. Each failure names `screen`.
    std::set<std::string> expectLiteral(QWidget& root, const std::string& screen) {
        root.grab(); // lays out and paints everything, as showing it to a person would
        QApplication::processEvents();
        std::set<std::string> seen;
        auto check = [&](const QString& text, Qt::TextFormat format, const QWidget& widget,
                         const char* what) {
            if (!text.contains(QStringLiteral("img")) || !text.contains(m_imagePath)) {
                return;
            }
            const QString shown = shownText(text, format);
            EXPECT_TRUE(shown.contains(m_imageTag))
                << screen << ": the " << what << " of a " << widget.metaObject()->className()
                << " reads \"" << shown.toStdString() << "\" for \"" << text.toStdString() << "\"";
            for (qsizetype at = shown.indexOf(QStringLiteral("<b>")); at >= 0;
                 at = shown.indexOf(QStringLiteral("<b>"), at + 1)) {
                const qsizetype end = shown.indexOf(QStringLiteral("</b>"), at);
                if (end > at) {
                    seen.insert(shown.mid(at + 3, end - at - 3).toStdString());
                }
            }
        };
        QList<QWidget*> widgets = root.findChildren<QWidget*>();
        widgets.prepend(&root);
        for (QWidget* widget : widgets) {
            if (!widget->isVisible()) {
                continue;
            }
            if (const auto* label = qobject_cast<QLabel*>(widget)) {
                check(label->text(), label->textFormat(), *label, "text");
            }
            check(widget->toolTip(), Qt::AutoText, *widget, "tooltip");
            if (const auto* view = qobject_cast<QAbstractItemView*>(widget);
                view != nullptr && view->model() != nullptr) {
                for (int row = 0; row < view->model()->rowCount(view->rootIndex()); ++row) {
                    const QModelIndex index = view->model()->index(row, 0, view->rootIndex());
                    check(index.data(Qt::ToolTipRole).toString(), Qt::AutoText, *view,
                          "row tooltip");
                }
            }
        }
        EXPECT_EQ(m_watch->newOpens(), 0) << screen << " opened the file of an <img> tag";
        return seen;
    }

    // `seen` holds every one of `fields`.
    static void expectShown(const std::set<std::string>& seen,
                            std::initializer_list<const char*> fields, const std::string& screen) {
        for (const char* field : fields) {
            EXPECT_TRUE(seen.contains(field)) << screen << " does not show the " << field;
        }
    }

    // Reveals the secret of the detail pane's row named `label` ("Password", "API Key").
    void reveal(QWidget& detail, const QString& label) {
        QLabel* value = childNamed<QLabel>(detail, label);
        QToolButton* button = childNamed<QToolButton>(detail, QStringLiteral("Reveal ") + label);
        ASSERT_TRUE(value && button);
        m_person.willType(userPassword);
        button->click();
        ASSERT_TRUE(waitFor([&] {
            return value->text().toStdString() != ServiceDetailScreen::maskedText;
        })) << label.toStdString();
    }

    QTemporaryDir m_imageFolder;
    const QString m_imagePath = m_imageFolder.filePath(QStringLiteral("probe.png"));
    const QString m_imageTag = QStringLiteral("<img src=\"%1\">").arg(m_imagePath);
    std::unique_ptr<OpenWatch> m_watch;
};

TEST_F(PlainUserTextTest, EveryScreenAndSheetShowsHtmlLiterallyAndLoadsNothing) {
    Organization& organization = addHostileOrganization();
    ServiceRecord& service = addHostileService(organization);
    connectAuthentication();
    MainWindow window(context());
    window.show();
    expectShown(expectLiteral(window, "main window"), {"name"}, "the sidebar's tooltip");

    for (const SidebarItem item : SidebarItem::allCases()) {
        m_state.setSelectedSidebarItem(item);
        QApplication::processEvents();
        expectLiteral(window, std::string(item.displayName()));
    }
    m_state.setSearchQuery(m_imageTag.toStdString());
    QApplication::processEvents();
    EXPECT_FALSE(expectLiteral(window, "search").empty()) << "the search shows its query";
    m_state.setSearchQuery("");

    m_state.navigateTo(organization);
    std::set<std::string> organizationSeen;
    for (const OrgDetailTab tab : OrgDetailTab::allCases()) {
        m_state.setSelectedOrgTab(tab);
        QApplication::processEvents();
        organizationSeen.merge(
            expectLiteral(window, "organization, tab " + std::string(tab.label())));
    }
    expectShown(organizationSeen, {"name", "projectName", "contactEmail", "organizationTag"},
                "the organization");

    m_state.navigateTo(service);
    QApplication::processEvents();
    QWidget& detail = *window.detailScreen();
    reveal(detail, QStringLiteral("Password"));
    reveal(detail, QStringLiteral("API Key"));
    expectShown(expectLiteral(window, "service detail"),
                {"title", "username", "hostname", "notes", "password", "apiKey"},
                "the service detail");

    // What the authentication dialog says, with the reason the reveal gave.
    ASSERT_FALSE(m_person.requests.empty());
    PasswordPromptDialog prompt(toQString(m_person.requests.back().reason),
                                QStringLiteral("Use Password"), QStringLiteral("Cancel"), &window);
    prompt.show();
    prompt.ask(QString::fromStdString(html("prompt")), false);
    prompt.showMessage(QString::fromStdString(html("message")), true);
    expectShown(expectLiteral(prompt, "authentication dialog"), {"title", "prompt", "message"},
                "the authentication dialog");
    prompt.reject();

    // The two confirmations of a deletion: the detail's button and a row's menu.
    buttonTitled(detail, QStringLiteral("Delete Service"))->click();
    auto* box = detail.findChild<QMessageBox*>();
    ASSERT_NE(box, nullptr);
    expectShown(expectLiteral(*box, "delete confirmation"), {"title"}, "the delete confirmation");
    box->reject();
    QTimer::singleShot(0, [this] {
        for (QWidget* top : QApplication::topLevelWidgets()) {
            if (auto* menuBox = qobject_cast<QMessageBox*>(top); menuBox && menuBox->isVisible()) {
                expectShown(expectLiteral(*menuBox, "row menu's delete confirmation"), {"title"},
                            "the row menu's delete confirmation");
                menuBox->reject();
                return;
            }
        }
        ADD_FAILURE() << "the row menu's delete asks nothing";
    });
    EXPECT_FALSE(ServiceContextMenu::confirmDeletion(context(), service, &window));

    // The sheets, on this organization and service.
    m_state.setEditingOrganization(&organization);
    m_state.setShowingNewOrganization(true);
    QApplication::processEvents();
    ASSERT_NE(window.sheet(Sheet::newOrganization), nullptr);
    expectLiteral(*window.sheet(Sheet::newOrganization), "organization form");
    window.sheet(Sheet::newOrganization)->reject();
    m_state.setEditingService(&service);
    m_state.setShowingNewService(true);
    QApplication::processEvents();
    ASSERT_NE(window.sheet(Sheet::newService), nullptr);
    expectLiteral(*window.sheet(Sheet::newService), "service form");
    window.sheet(Sheet::newService)->reject();
    QApplication::processEvents();

    SmartPasteSheet paste(context(), &organization);
    paste.show();
    QGuiApplication::clipboard()->setText(QString::fromStdString(
        "Host: files.example\nUsername: " + html("pastedUser") + "\nNotes: " + html("pasted")));
    QTest::mouseClick(buttonTitled(paste, QStringLiteral("Paste from Clipboard")), Qt::LeftButton);
    expectLiteral(paste, "smart paste, paste step");
    QTest::mouseClick(buttonTitled(paste, QStringLiteral("Parse")), Qt::LeftButton);
    ASSERT_EQ(paste.flow().step(), SmartPasteFlow::Step::review);
    expectLiteral(paste, "smart paste, review step");

    ShareSheet share(context(), organization, organization.services);
    share.show();
    expectLiteral(share, "share, choose step");
    share.findChild<QListWidget*>()->item(0)->setCheckState(Qt::Checked);
    QTest::mouseClick(buttonTitled(share, QStringLiteral("Next")), Qt::LeftButton);
    childNamed<QLineEdit>(share, QStringLiteral("Recipient"))
        ->setText(QString::fromStdString(html("recipient")));
    expectLiteral(share, "share, configure step");
    QTest::mouseClick(buttonTitled(share, QStringLiteral("Review")), Qt::LeftButton);
    expectShown(expectLiteral(share, "share, review step"), {"recipient"}, "the share summary");
}

TEST_F(PlainUserTextTest, ARevealedSecretLeavesOnlyThroughItsCopyButton) {
    ServiceRecord& service = addHostileService(addHostileOrganization());
    connectAuthentication();
    m_state.navigateTo(service);
    ServiceDetailView view(context(), service);
    view.resize(900, 700);
    view.show();
    reveal(view, QStringLiteral("Password"));
    QLabel* value = childNamed<QLabel>(view, QStringLiteral("Password"));
    ASSERT_NE(value, nullptr);
    EXPECT_EQ(value->text().toStdString(), html("password"));

    // A drag across the text selects nothing (no PRIMARY selection to fill).
    const QPoint start(2, value->height() / 2);
    const QPoint end(value->width() - 2, value->height() / 2);
    QTest::mousePress(value, Qt::LeftButton, {}, start);
    QTest::mouseMove(value, end);
    QTest::mouseRelease(value, Qt::LeftButton, {}, end);
    QTest::mouseDClick(value, Qt::LeftButton, {}, start);
    EXPECT_FALSE(value->hasSelectedText()) << value->selectedText().toStdString();
    QTest::keyClick(value, Qt::Key_A, Qt::ControlModifier);
    EXPECT_FALSE(value->hasSelectedText());

    // The copy button puts it on the clipboard for clipboard managers to skip, for a while only.
    childNamed<QToolButton>(view, QStringLiteral("Copy Password"))->click();
    ASSERT_TRUE(waitFor([&] { return clipboardText() == html("password"); }));
    const QMimeData* data = QGuiApplication::clipboard()->mimeData();
    ASSERT_NE(data, nullptr);
    EXPECT_EQ(data->data(QStringLiteral("x-kde-passwordManagerHint")), QByteArray("secret"));
    m_timers.advance(30s);
    EXPECT_NE(clipboardText(), html("password"));
}

} // namespace
} // namespace vorlane::testing
