// SPDX-License-Identifier: GPL-3.0-or-later
// File → Export Inventory… in the window: the save dialog's proposal, the file it writes and the
// message when it cannot. The dialog's answer is the only stand-in.

#include "MainWindow.h"
#include "RunCommand.h"
#include "ScreenFixture.h"
#include "backup/InventoryCsv.h"
#include "model/Organization.h"

#include <QAction>
#include <QApplication>
#include <QMenuBar>
#include <QMessageBox>
#include <QTimer>

#include <sys/stat.h>

#include <filesystem>

namespace vorlane::testing {
namespace {

class ExportInventoryTest : public ScreenFixture {
protected:
    ExportInventoryTest() {
        ServiceRecord& mail = addService(addOrganization("Acme, Inc."), "Mail \"prod\"");
        mail.notes = "two\nlines";
        m_store->noteChanged(mail);
        m_window.setSaveFileChooser(
            [this](const QString& caption, const QString& path, const QString& filter) {
                m_asked = {caption, path, filter};
                return m_answer;
            });
        m_window.show();
    }

    void chooseExport() {
        for (QAction* action : m_window.menuBar()->findChildren<QAction*>()) {
            if (action->text() == QStringLiteral("Export Inventory\u2026")) {
                action->trigger();
                return;
            }
        }
        ADD_FAILURE() << "no File → Export Inventory…";
    }

    // Closes the message box the next step opens, noting its text (empty when none opened).
    void noteMessageBox() {
        m_shown.clear();
        QTimer::singleShot(0, [this] {
            if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
                m_shown = box->text();
                box->accept();
            }
        });
    }

    MainWindow m_window{context()};
    QString m_answer;
    QStringList m_asked;
    QString m_shown;
};

TEST_F(ExportInventoryTest, ProposesTheDaysFileAndWritesTheInventoryOwnerOnly) {
    const std::string path = m_folder.filePath(QStringLiteral("chosen.csv")).toStdString();
    m_answer = QString::fromStdString(path);
    noteMessageBox();
    chooseExport();
    ASSERT_EQ(m_asked.size(), 3);
    EXPECT_EQ(m_asked[0], QStringLiteral("Export Inventory"));
    EXPECT_TRUE(m_asked[1].endsWith(QStringLiteral("/Vorlane-Inventory-2026-03-10.csv")))
        << m_asked[1].toStdString();
    EXPECT_TRUE(m_asked[2].contains(QStringLiteral("*.csv")));
    QCoreApplication::processEvents();
    EXPECT_EQ(m_shown, QString()) << "a message after a good export";

    EXPECT_EQ(readFile(path), InventoryCsv::text(*m_store, m_calendar));
    EXPECT_NE(readFile(path).find("\"Mail \"\"prod\"\"\""), std::string::npos);
    struct stat info {};
    ASSERT_EQ(::stat(path.c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0600u);
}

TEST_F(ExportInventoryTest, AFolderThatIsGoneIsSaidAndNoFileIsLeftCancelWritesNothing) {
    const QString path = m_folder.filePath(QStringLiteral("gone/inventory.csv"));
    m_answer = path;
    noteMessageBox();
    chooseExport();
    EXPECT_EQ(m_shown, QStringLiteral("The inventory could not be written to ") + path +
                           QStringLiteral(": No such file or directory"));
    EXPECT_FALSE(std::filesystem::exists(m_folder.filePath(QStringLiteral("gone")).toStdString()));

    m_answer.clear(); // Cancel in the dialog
    noteMessageBox();
    chooseExport();
    QCoreApplication::processEvents();
    EXPECT_EQ(m_shown, QString());
    EXPECT_EQ(QDir(m_folder.path()).entryList(QStringList{QStringLiteral("*.csv")}), QStringList());
}

} // namespace
} // namespace vorlane::testing
