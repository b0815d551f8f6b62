// SPDX-License-Identifier: GPL-3.0-or-later
#include "screens/OrganizationForm.h"

#include "ScreenFixture.h"
#include "model/Organization.h"

#include <QFile>

namespace vorlane::testing {
namespace {

class OrganizationFormTest : public ScreenFixture {
protected:
    OrganizationForm form() { return OrganizationForm(store(), m_state, m_calendar); }

    // Reopens the vault file, as the next start of the program would.
    std::unique_ptr<DataStore> reopened() {
        store().save();
        auto opened = DataStore::open(store().path(), m_keychain, m_calendar, m_timers);
        EXPECT_TRUE(opened) << opened.error();
        return opened ? std::move(opened).value() : nullptr;
    }

    std::string writeFile(const QString& name, const QByteArray& bytes) {
        QFile file(m_folder.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
        return file.fileName().toStdString();
    }
};

TEST_F(OrganizationFormTest, CreatingTrimsTheNameSplitsTheTagsAndKeepsTheRestAsTyped) {
    OrganizationForm sheet = form();
    EXPECT_TRUE(sheet.isActive);
    sheet.name = "   ";
    EXPECT_FALSE(sheet.canSave());
    EXPECT_EQ(sheet.save(), nullptr);
    sheet.name = "\u00A0\u3000\u2028";
    EXPECT_FALSE(sheet.canSave()) << "no-break and ideographic spaces are whitespace";
    EXPECT_EQ(sheet.save(), nullptr);
    EXPECT_TRUE(store().fetchOrganizations(true).empty());

    sheet.name = "\u00A0 Acme Corp \t\u3000";
    sheet.projectName = " Relaunch ";
    sheet.contactName = "  Jo ";
    sheet.website = "acme.example ";
    sheet.tagsText = " web, , client ,,vip";
    sheet.isActive = false;
    m_clock.advance(std::chrono::minutes(5));
    ASSERT_TRUE(sheet.canSave());
    Organization* saved = sheet.save();
    ASSERT_NE(saved, nullptr);

    auto reopenedStore = reopened();
    ASSERT_TRUE(reopenedStore);
    const auto all = reopenedStore->fetchOrganizations(true);
    ASSERT_EQ(all.size(), 1U);
    const Organization& acme = *all[0];
    EXPECT_EQ(acme.name, "Acme Corp");
    EXPECT_EQ(acme.projectName, "Relaunch");
    EXPECT_EQ(acme.contactName, "  Jo ");
    EXPECT_EQ(acme.website, "acme.example ");
    EXPECT_EQ(acme.tags, (std::vector<std::string>{"web", "client", "vip"}));
    EXPECT_FALSE(acme.isActive);
    EXPECT_EQ(acme.createdAt, m_clock.now());
    EXPECT_EQ(acme.updatedAt, m_clock.now());
}

TEST_F(OrganizationFormTest, AnEditStartedFromTheMenuUpdatesInPlaceAndACancelledOneComesBack) {
    Organization& acme = addOrganization("Acme");
    acme.tags = {"web", "vip"};
    acme.notes = "keep";
    m_state.setEditingOrganization(&acme);

    {
        // Cancelled: the sheet goes away without saving.
        OrganizationForm sheet = form();
        EXPECT_EQ(sheet.tagsText, "web, vip");
        sheet.name = "Changed but cancelled";
    }
    EXPECT_EQ(m_state.editingOrganization(), &acme);

    OrganizationForm sheet = form();
    EXPECT_EQ(sheet.name, "Acme") << "the cancelled organization's values come back";
    EXPECT_EQ(sheet.title(), "New Organization");
    EXPECT_EQ(sheet.saveButtonTitle(), "Create Organization");
    sheet.name = "Acme Ltd";
    sheet.tagsText = "web";
    m_clock.advance(std::chrono::hours(1));
    EXPECT_EQ(sheet.save(), &acme);

    EXPECT_EQ(store().fetchOrganizations(true).size(), 1U) << "editing creates nothing";
    EXPECT_EQ(acme.name, "Acme Ltd");
    EXPECT_EQ(acme.tags, std::vector<std::string>{"web"});
    EXPECT_EQ(acme.notes, "keep");
    EXPECT_EQ(acme.updatedAt, m_clock.now());
    EXPECT_EQ(m_state.editingOrganization(), nullptr);
    EXPECT_EQ(form().name, "") << "the next sheet is a new organization again";

    OrganizationForm editMode(store(), m_state, m_calendar, &acme);
    EXPECT_EQ(editMode.title(), "Edit Organization");
    EXPECT_EQ(editMode.saveButtonTitle(), "Save Changes");
    EXPECT_EQ(editMode.name, "Acme Ltd");
}

TEST_F(OrganizationFormTest, TheLogoIsStoredByteForByteAndAnUnreadableFileChangesNothing) {
    // A large "image" within the limit: the bytes are kept as they are, whatever they hold.
    QByteArray large(5 * 1024 * 1024, '\0');
    for (qsizetype i = 0; i < large.size(); ++i) {
        large[i] = static_cast<char>(i * 7 % 251);
    }
    const std::string path = writeFile(QStringLiteral("logo.png"), large);
    const std::vector<std::uint8_t> expected(large.begin(), large.end());

    OrganizationForm sheet = form();
    sheet.name = "Logo Co";
    ASSERT_TRUE(sheet.chooseLogo(path, std::nullopt));
    EXPECT_FALSE(sheet.chooseLogo(m_folder.filePath(QStringLiteral("missing.png")).toStdString(),
                                  std::nullopt));
    EXPECT_FALSE(sheet.chooseLogo(m_folder.path().toStdString(), std::nullopt));
    EXPECT_EQ(sheet.logoError(), "");
    ASSERT_TRUE(sheet.logoData);
    EXPECT_EQ(*sheet.logoData, expected);
    sheet.save();

    auto reopenedStore = reopened();
    ASSERT_TRUE(reopenedStore);
    Organization& saved = *reopenedStore->fetchOrganizations(true).at(0);
    ASSERT_TRUE(reopenedStore->logo(saved));
    EXPECT_EQ(*reopenedStore->logo(saved), expected);

    // Editing it loads the logo; "Remove" and saving clears it.
    m_state.setEditingOrganization(store().fetchOrganizations(true).at(0));
    OrganizationForm edit = form();
    ASSERT_TRUE(edit.logoData);
    edit.removeLogo();
    edit.save();
    reopenedStore = reopened();
    ASSERT_TRUE(reopenedStore);
    EXPECT_FALSE(reopenedStore->logo(*reopenedStore->fetchOrganizations(true).at(0)));
}

TEST_F(OrganizationFormTest, ALogoOverFiveMegabytesOr4096PixelsASideIsRefusedWithAMessage) {
    OrganizationForm sheet = form();
    const std::string small = writeFile(QStringLiteral("small.png"), QByteArray("png"));
    ASSERT_TRUE(sheet.chooseLogo(small, OrganizationForm::PixelSize{4096, 4096}));
    const std::vector<std::uint8_t> kept = *sheet.logoData;

    const auto refused = [&](const std::string& path,
                             std::optional<OrganizationForm::PixelSize> size,
                             const std::string& message) {
        SCOPED_TRACE(path);
        EXPECT_FALSE(sheet.chooseLogo(path, size));
        EXPECT_EQ(sheet.logoError(), message);
        EXPECT_EQ(sheet.logoData, kept) << "the logo chosen before stays";
    };
    const std::string fileMessage = "This logo is larger than 5 MB. Choose a smaller image.";
    refused(writeFile(QStringLiteral("big.png"), QByteArray(5 * 1024 * 1024 + 1, 'x')),
            std::nullopt, fileMessage);
    // No size to go by: read to one byte past the limit, never to the end.
    refused("/dev/zero", std::nullopt, fileMessage);
    const std::string pixelMessage =
        "This logo is larger than 4096 × 4096 pixels. Choose a smaller image.";
    refused(small, OrganizationForm::PixelSize{4097, 10}, pixelMessage);
    refused(small, OrganizationForm::PixelSize{10, 100000}, pixelMessage);

    ASSERT_TRUE(sheet.chooseLogo(small, std::nullopt));
    EXPECT_EQ(sheet.logoError(), "") << "the next choice clears the message";
}

} // namespace
} // namespace vorlane::testing
