// SPDX-License-Identifier: GPL-3.0-or-later
#include "screens/ImportSheet.h"

#include "ScreenFixture.h"
#include "WidgetLookup.h"
#include "model/Organization.h"
#include "model/ServiceRecord.h"
#include "screens/ImportPreviewModel.h"
#include "util/IsoDate.h"

#include <QCheckBox>
#include <QComboBox>
#include <QCoreApplication>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTableView>

#include <algorithm>
#include <set>

namespace vorlane::testing {
namespace {

QString fixture(const char* name) {
    return QStringLiteral(VORLANE_TEST_DATA "/../../import/") + QString::fromUtf8(name);
}

class ImportSheetTest : public ScreenFixture {
protected:
    static QTableView* table(QWidget& sheet) {
        return childNamed<QTableView>(sheet, QStringLiteral("Rows to import"));
    }
    static QString cell(QWidget& sheet, int row, int column) {
        QAbstractItemModel* model = table(sheet)->model();
        return model->data(model->index(row, column)).toString();
    }
    // Opens the cell's editor as a double click would, picks `text` in its combo box and
    // commits it with Return, through the table's own delegate.
    static void editCell(QWidget& sheet, int row, int column, const QString& text) {
        QTableView* view = table(sheet);
        const QModelIndex index = view->model()->index(row, column);
        view->setCurrentIndex(index);
        view->edit(index);
        auto* combo = view->viewport()->findChild<QComboBox*>();
        ASSERT_NE(combo, nullptr);
        if (combo->isEditable()) {
            combo->setEditText(text);
        } else {
            const int found = combo->findText(text);
            ASSERT_GE(found, 0) << text.toStdString();
            combo->setCurrentIndex(found);
        }
        QTest::keyClick(combo, Qt::Key_Return);
        // The delegate commits on the next turn of the loop and deletes the editor later still.
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    static QString labelText(QWidget& sheet, const QString& name) {
        auto* label = childNamed<QLabel>(sheet, name);
        return label != nullptr ? label->text() : QString();
    }
};

TEST_F(ImportSheetTest, AKeePassExportComesInThroughTheThreeSteps) {
    Organization& acme = addOrganization("Acme Corp");
    ImportSheet sheet(context());
    sheet.show();
    ASSERT_EQ(sheet.flow().step(), ImportFlow::Step::chooseFile);
    ASSERT_NE(buttonTitled(sheet, QStringLiteral("Choose File\u2026")), nullptr);

    // A file that cannot be read keeps the sheet on the first step, saying why.
    sheet.chooseFile(fixture("bitwarden-encrypted.json"));
    EXPECT_EQ(sheet.flow().step(), ImportFlow::Step::chooseFile);
    EXPECT_TRUE(labelText(sheet, QStringLiteral("Error"))
                    .startsWith(QStringLiteral("This Bitwarden export is encrypted.")));

    // A format picked by hand is the one the file is read as.
    auto* format = childNamed<QComboBox>(sheet, QStringLiteral("Format"));
    ASSERT_NE(format, nullptr);
    const int lastPass = format->findText(QStringLiteral("LastPass CSV"));
    ASSERT_GT(lastPass, 0);
    format->setCurrentIndex(lastPass);
    Q_EMIT format->activated(lastPass);
    sheet.chooseFile(fixture("keepassxc-keepass-export.xml"));
    EXPECT_EQ(sheet.flow().step(), ImportFlow::Step::chooseFile);
    EXPECT_FALSE(labelText(sheet, QStringLiteral("Error")).isEmpty());
    format->setCurrentIndex(0);
    Q_EMIT format->activated(0);

    sheet.chooseFile(fixture("keepassxc-keepass-export.xml"));
    ASSERT_EQ(sheet.flow().step(), ImportFlow::Step::preview);
    EXPECT_FALSE(childNamed<QLabel>(sheet, QStringLiteral("Error"))->isVisibleTo(&sheet));
    EXPECT_EQ(childNamed<QComboBox>(sheet, QStringLiteral("Format"))->itemText(0),
              QStringLiteral("Detected: KeePass XML"));
    ASSERT_EQ(table(sheet)->model()->rowCount(), 6);
    EXPECT_EQ(cell(sheet, 1, ImportPreviewModel::title), QStringLiteral("Acme VPS"));
    EXPECT_EQ(cell(sheet, 1, ImportPreviewModel::organization), QStringLiteral("Acme Corp"));
    EXPECT_EQ(cell(sheet, 1, ImportPreviewModel::expiration), QStringLiteral("Mar 15, 2027"));
    EXPECT_EQ(cell(sheet, 0, ImportPreviewModel::organization), QStringLiteral("Imported"));

    // The rule, then a row's own organization and kind, through the table's editors.
    auto* one =
        childNamed<QCheckBox>(sheet, QStringLiteral("Put everything into one organization"));
    ASSERT_NE(one, nullptr);
    one->click();
    EXPECT_EQ(cell(sheet, 1, ImportPreviewModel::organization), QStringLiteral("Imported"));
    one->click();
    EXPECT_EQ(cell(sheet, 1, ImportPreviewModel::organization), QStringLiteral("Acme Corp"));
    editCell(sheet, 0, ImportPreviewModel::organization, QStringLiteral("Home Lab"));
    EXPECT_EQ(cell(sheet, 0, ImportPreviewModel::organization), QStringLiteral("Home Lab"));
    editCell(sheet, 5, ImportPreviewModel::serviceType, QStringLiteral("Mailbox"));
    EXPECT_EQ(cell(sheet, 5, ImportPreviewModel::serviceType), QStringLiteral("Mailbox"));
    EXPECT_EQ(labelText(sheet, QStringLiteral("Preview summary")),
              QStringLiteral("6 to import, 0 duplicates, 0 rejected"));
    EXPECT_EQ(store().countServices(true), 0U) << "nothing written before the import";
    EXPECT_EQ(store().fetchOrganizations(true).size(), 1U);

    QTest::mouseClick(buttonTitled(sheet, QStringLiteral("Import")), Qt::LeftButton);
    ASSERT_TRUE(waitFor([&] { return sheet.flow().step() == ImportFlow::Step::done; }));
    EXPECT_EQ(labelText(sheet, QStringLiteral("Summary")),
              QStringLiteral(
                  "6 services imported into 3 organizations, 0 duplicates skipped, 0 rejected"));
    EXPECT_TRUE(showsLabel(sheet, QString::fromLatin1(ImportFlow::deleteAdvice)));

    // The existing client was reused by name, and every secret went to the keyring.
    EXPECT_EQ(store().fetchOrganizations(true).size(), 3U);
    ASSERT_EQ(acme.services.size(), 3U);
    const auto vps = std::find_if(acme.services.begin(), acme.services.end(),
                                  [](const auto& service) { return service->title == "Acme VPS"; });
    ASSERT_NE(vps, acme.services.end());
    EXPECT_EQ(store().getPassword(**vps), "vps-secret-1");
    for (const ServiceRecord* service : store().fetchAllServices(true)) {
        if (service->title == "Datenbank") {
            EXPECT_EQ(service->serviceType(), ServiceType::mailbox);
        }
        if (service->title == "Router at home") {
            ASSERT_NE(service->organization, nullptr);
            EXPECT_EQ(service->organization->name, "Home Lab");
        }
    }

    QTest::mouseClick(buttonTitled(sheet, QStringLiteral("Done")), Qt::LeftButton);
    EXPECT_EQ(sheet.result(), QDialog::Accepted);
}

// KeePassXC's export of a 300-entry database in 25 client groups, through the sheet as a person
// takes it: every entry becomes a service of its group's client with its expiry, every password
// is in the Secret Service, and the summary counts them.
TEST_F(ImportSheetTest, AThreeHundredEntryKeePassXcExportComesInWhole) {
    ImportSheet sheet(context());
    sheet.show();
    sheet.chooseFile(fixture("keepassxc-keepass-300-export.xml"));
    ASSERT_EQ(sheet.flow().step(), ImportFlow::Step::preview);
    EXPECT_EQ(table(sheet)->model()->rowCount(), 300);
    EXPECT_EQ(labelText(sheet, QStringLiteral("Preview summary")),
              QStringLiteral("300 to import, 0 duplicates, 0 rejected"));
    QTest::mouseClick(buttonTitled(sheet, QStringLiteral("Import")), Qt::LeftButton);
    ASSERT_TRUE(waitFor([&] { return sheet.flow().step() == ImportFlow::Step::done; }, 60000));
    EXPECT_EQ(labelText(sheet, QStringLiteral("Summary")),
              QStringLiteral(
                  "300 services imported into 25 organizations, 0 duplicates skipped, 0 rejected"));
    const ImportReport& report = sheet.flow().report();
    EXPECT_EQ(report.created, 300U);
    EXPECT_EQ(report.organizationsCreated, 25U);
    EXPECT_TRUE(report.failure.empty()) << report.failure;
    EXPECT_FALSE(report.cancelled);
    EXPECT_FALSE(store().hasUnsavedChanges());

    const std::vector<Organization*> organizations = store().fetchOrganizations(true);
    ASSERT_EQ(organizations.size(), 25U);
    for (const Organization* organization : organizations) {
        EXPECT_EQ(organization->services.size(), 12U) << organization->name;
    }
    const std::vector<ServiceRecord*> services = store().fetchAllServices(true);
    ASSERT_EQ(services.size(), 300U);
    // The fixture's numbers as its script writes them, with leading zeros.
    const auto padded = [](int value, std::size_t width) {
        const std::string digits = std::to_string(value);
        return std::string(width - std::min(width, digits.size()), '0') + digits;
    };
    std::set<int> numbers;
    for (const ServiceRecord* service : services) {
        // "Service 001" is entry 0 of "Client 01", twelve to a client.
        const int number = std::stoi(service->title.substr(8)) - 1;
        numbers.insert(number);
        ASSERT_NE(service->organization, nullptr) << service->title;
        EXPECT_EQ(service->organization->name, "Client " + padded(number / 12 + 1, 2))
            << service->title;
        const std::optional<SecretBytes> stored = m_keychain.readData(service->secretKeychainID);
        ASSERT_TRUE(stored) << service->title;
        EXPECT_EQ(std::string(stored->begin(), stored->end()),
                  "secret-" + padded(number, 3) + "-Xy!")
            << service->title;
        if (number % 4 == 0) {
            ASSERT_TRUE(service->expirationDate) << service->title;
            EXPECT_EQ(IsoDate::utc(*service->expirationDate),
                      "2027-" + padded(number % 12 + 1, 2) + "-15T12:00:00Z")
                << service->title;
        } else {
            EXPECT_FALSE(service->expirationDate) << service->title;
        }
    }
    EXPECT_EQ(numbers.size(), 300U) << "every entry once";
}

// Escape during the import stops it between two rows: what was written stays with its secrets,
// the sheet stays open on the summary, and a second Escape closes it.
TEST_F(ImportSheetTest, EscapeCancelsARunningImportAndKeepsWhatCameIn) {
    ImportSheet sheet(context());
    sheet.show();
    sheet.chooseFile(fixture("keepassxc-keepass-300-export.xml"));
    ASSERT_EQ(sheet.flow().step(), ImportFlow::Step::preview);
    QTest::mouseClick(buttonTitled(sheet, QStringLiteral("Import")), Qt::LeftButton);
    ASSERT_EQ(sheet.flow().step(), ImportFlow::Step::importing);
    ASSERT_TRUE(waitFor([&] { return store().countServices(true) >= 4; }));

    QTest::keyClick(&sheet, Qt::Key_Escape);
    ASSERT_EQ(sheet.flow().step(), ImportFlow::Step::done);
    EXPECT_TRUE(sheet.isVisible());
    const ImportReport& report = sheet.flow().report();
    EXPECT_TRUE(report.cancelled);
    EXPECT_LT(report.created, 300U);
    QTest::qWait(50); // no turn of the loop imports anything more
    const std::vector<ServiceRecord*> services = store().fetchAllServices(true);
    EXPECT_EQ(services.size(), report.created);
    for (const ServiceRecord* service : services) {
        const std::optional<std::string> password = store().getPassword(*service);
        EXPECT_TRUE(password && !password->empty()) << service->title;
    }
    EXPECT_TRUE(
        labelText(sheet, QStringLiteral("Summary"))
            .startsWith(QString::number(report.created) + QStringLiteral(" services imported")));

    QTest::keyClick(&sheet, Qt::Key_Escape);
    EXPECT_FALSE(sheet.isVisible());
    EXPECT_EQ(sheet.result(), QDialog::Rejected);
}

// A row already in the vault is skipped unless its check box keeps it.
TEST_F(ImportSheetTest, ADuplicateIsImportedOnlyWhenKept) {
    {
        ImportFlow first(store(), context().calendar);
        ASSERT_TRUE(first.chooseFile(fixture("lastpass.csv").toStdString()));
        first.startImport();
        while (first.importStep(10)) {
        }
    }
    const std::size_t before = store().countServices(true);
    ImportSheet sheet(context());
    sheet.show();
    sheet.chooseFile(fixture("lastpass.csv"));
    QAbstractItemModel* model = table(sheet)->model();
    const QModelIndex status = model->index(0, ImportPreviewModel::status);
    EXPECT_EQ(status.data().toString(), QStringLiteral("Duplicate"));
    EXPECT_TRUE(status.flags() & Qt::ItemIsUserCheckable);
    EXPECT_FALSE(buttonTitled(sheet, QStringLiteral("Import"))->isEnabled());
    ASSERT_TRUE(model->setData(status, Qt::Checked, Qt::CheckStateRole));
    EXPECT_EQ(status.data().toString(), QStringLiteral("Duplicate (kept)"));
    QPushButton* import = buttonTitled(sheet, QStringLiteral("Import"));
    ASSERT_TRUE(import->isEnabled());
    QTest::mouseClick(import, Qt::LeftButton);
    ASSERT_TRUE(waitFor([&] { return sheet.flow().step() == ImportFlow::Step::done; }));
    EXPECT_EQ(store().countServices(true), before + 1);
}

} // namespace
} // namespace vorlane::testing
