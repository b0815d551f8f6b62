// SPDX-License-Identifier: GPL-3.0-or-later
// The import sheet's model on a real vault and keyring: nothing is written before the import
// starts, the preview's rows and rule, progress, cancel and the summary.

#include "screens/ImportFlow.h"

#include "ImportFixtures.h"
#include "VaultFixture.h"

namespace vorlane::testing {
namespace {

class ImportFlowTest : public VaultFixture {
protected:
    ImportFlowTest() { open(); }
};

TEST_F(ImportFlowTest, PreviewThenImportWithProgress) {
    ImportFlow flow(*m_store, m_calendar);
    EXPECT_FALSE(flow.chooseFile(fixturePath("bitwarden-encrypted.json")));
    EXPECT_EQ(flow.step(), ImportFlow::Step::chooseFile);
    EXPECT_EQ(flow.error(), "This Bitwarden export is encrypted. Export it again as JSON "
                            "(unencrypted) or import it into another manager first.");

    ASSERT_TRUE(flow.chooseFile(fixturePath("keepassxc-keepass-export.xml"))) << flow.error();
    EXPECT_EQ(flow.formatText(), "Format: KeePass XML (detected)");
    ASSERT_EQ(flow.rowCount(), 6u);
    const ImportFlow::RowView vps = flow.row(1);
    EXPECT_EQ(vps.organization, "Acme Corp");
    EXPECT_EQ(vps.title, "Acme VPS");
    EXPECT_EQ(vps.serviceType, "SSH Access");
    EXPECT_EQ(vps.host, "vps1.acme.test");
    EXPECT_EQ(vps.secrets, "\u25CF");
    EXPECT_EQ(vps.expiration, "Mar 15, 2027");
    EXPECT_EQ(vps.status, "New");
    EXPECT_EQ(flow.row(0).host, "192.168.1.1");
    EXPECT_EQ(flow.previewSummary(), "6 to import, 0 duplicates, 0 rejected");

    // The rule and a row's own choices; still nothing written.
    flow.setFallbackOrganization("Home");
    EXPECT_EQ(flow.row(0).organization, "Home");
    flow.setRowOrganization(2, "Mail Client");
    flow.setOneOrganization(true);
    EXPECT_EQ(flow.row(1).organization, "Home");
    EXPECT_EQ(flow.row(2).organization, "Mail Client"); // typed for the row: the rule leaves it
    flow.setOneOrganization(false);
    EXPECT_EQ(flow.row(1).organization, "Acme Corp");
    flow.setRowServiceType(5, ServiceType::mailbox);
    EXPECT_EQ(flow.row(5).serviceType, "Mailbox");
    EXPECT_EQ(m_store->countServices(true), 0u);
    EXPECT_TRUE(m_store->fetchOrganizations(true).empty());

    flow.startImport();
    EXPECT_EQ(flow.step(), ImportFlow::Step::importing);
    EXPECT_TRUE(flow.importStep(2));
    EXPECT_DOUBLE_EQ(flow.progress(), 2.0 / 6.0);
    EXPECT_EQ(flow.progressText(), "Importing 2 of 6\u2026");
    while (flow.importStep(2)) {
    }
    EXPECT_EQ(flow.step(), ImportFlow::Step::done);
    EXPECT_DOUBLE_EQ(flow.progress(), 1.0);
    EXPECT_EQ(flow.summary(),
              "6 services imported into 4 organizations, 0 duplicates skipped, 0 rejected");
    EXPECT_EQ(m_store->countServices(true), 6u);
}

TEST_F(ImportFlowTest, DuplicatesCanBeKeptAndCancelStopsAtOnce) {
    {
        ImportFlow first(*m_store, m_calendar);
        ASSERT_TRUE(first.chooseFile(fixturePath("lastpass.csv")));
        first.startImport();
        while (first.importStep(10)) {
        }
    }
    ImportFlow flow(*m_store, m_calendar);
    ASSERT_TRUE(flow.chooseFile(fixturePath("lastpass.csv")));
    EXPECT_EQ(flow.row(0).status, "Duplicate");
    EXPECT_FALSE(flow.canImport());
    flow.setKeepDuplicate(0, true);
    EXPECT_EQ(flow.row(0).status, "Duplicate (kept)");
    EXPECT_EQ(flow.previewSummary(), "1 to import, 3 duplicates, 0 rejected");
    flow.startImport();
    flow.cancel();
    EXPECT_EQ(flow.step(), ImportFlow::Step::done);
    EXPECT_EQ(flow.summary(), "0 services imported into 0 organizations, 3 duplicates skipped, "
                              "0 rejected; cancelled, 1 entry not imported");
    EXPECT_EQ(m_store->countServices(true), 4u);

    TempFolder folder;
    EXPECT_EQ(ImportFlow::saveTemplate(folder.path() + "/t.csv"), "");
    EXPECT_EQ(ImportFlow::saveTemplate(folder.path() + "/missing/t.csv"),
              "Could not write " + folder.path() + "/missing/t.csv");
}

} // namespace
} // namespace vorlane::testing
