// SPDX-License-Identifier: GPL-3.0-or-later
#include "screens/BackupFlow.h"

#include "ScreenFixture.h"
#include "TestKeyring.h"
#include "backup/BackupFile.h"
#include "backup/BackupPassword.h"
#include "model/Organization.h"
#include "model/ServiceRecord.h"

#include <filesystem>

namespace vorlane::testing {
namespace {

constexpr const char* goodPassword = "violet tractor harbour 1947";

class BackupFlowTest : public ScreenFixture {
protected:
    std::string pathIn(const char* name) const {
        return m_folder.filePath(QString::fromLatin1(name)).toStdString();
    }

    // A service of `owner` whose password is in the keyring.
    ServiceRecord& addServiceWithPassword(Organization& owner, const std::string& title,
                                          const std::string& password) {
        ServiceRecord& service = addService(owner, title, [](ServiceRecord& s) {
            s.secretKeychainID = ServiceRecord::makeSecretKeychainID();
        });
        EXPECT_TRUE(store().setPassword(password, service));
        return service;
    }

    // A flow past its authentication, through real PAM.
    std::unique_ptr<BackupFlow> authenticatedFlow() {
        connectAuthentication();
        m_person.willType(userPassword);
        auto flow = std::make_unique<BackupFlow>(store(), m_auth, m_calendar);
        bool answered = false;
        flow->authenticate([&answered] { answered = true; });
        EXPECT_TRUE(waitFor([&] { return answered; }));
        EXPECT_EQ(flow->step(), BackupFlow::Step::password);
        return flow;
    }

    // Seals the job as the sheet's worker does, with a cheap key derivation.
    static std::string seal(const BackupFlow::Job& job) {
        return BackupFile::seal(job.contents, job.password,
                                {.memoryKiB = 64, .passes = 1, .lanes = 1});
    }
};

TEST_F(BackupFlowTest, AuthenticationComesFirstAndARefusalStaysOnItsStep) {
    connectAuthentication();
    BackupFlow flow(store(), m_auth, m_calendar);
    EXPECT_EQ(flow.step(), BackupFlow::Step::authenticate);
    EXPECT_EQ(flow.mainButtonTitle(), "Authenticate");

    m_person.willCancel();
    bool answered = false;
    flow.authenticate([&answered] { answered = true; });
    EXPECT_TRUE(flow.isAuthenticating());
    EXPECT_FALSE(flow.mainButtonEnabled()) << "one request at a time";
    ASSERT_TRUE(waitFor([&] { return answered; }));
    EXPECT_EQ(flow.step(), BackupFlow::Step::authenticate);
    EXPECT_EQ(flow.error(), std::string(BackupFlow::authenticationRefused));
    EXPECT_TRUE(flow.mainButtonEnabled());
    ASSERT_EQ(m_person.requests.size(), 1U);
    EXPECT_EQ(m_person.requests.front().reason, "Authenticate to back up your vault");

    // A wrong password is a refusal too; the right one moves on and clears the message.
    m_person.willType("not the password");
    answered = false;
    flow.authenticate([&answered] { answered = true; });
    ASSERT_TRUE(waitFor([&] { return answered; }));
    EXPECT_EQ(flow.step(), BackupFlow::Step::authenticate);
    m_person.willType(userPassword);
    answered = false;
    flow.authenticate([&answered] { answered = true; });
    ASSERT_TRUE(waitFor([&] { return answered; }));
    EXPECT_EQ(flow.step(), BackupFlow::Step::password);
    EXPECT_FALSE(flow.error().has_value());
    EXPECT_EQ(flow.subtitle(), "Step 2: Choose a backup password");
    EXPECT_EQ(flow.lastReachedMarker(), 1);
}

// A backup may sit on a USB stick, where guesses cost nothing but time: the password has to be
// long and not guessable, and typed the same twice, before anything is read.
TEST_F(BackupFlowTest, ThePasswordMustBeLongHardToGuessAndTypedTwice) {
    auto flow = authenticatedFlow();
    EXPECT_FALSE(flow->mainButtonEnabled());
    EXPECT_FALSE(flow->passwordMessage().has_value()) << "nothing said before typing";
    EXPECT_FALSE(flow->passwordStrength().has_value());

    flow->password = "Tr0ub4dor&3";
    EXPECT_EQ(flow->passwordMessage(), std::string(BackupPassword::tooShort));
    EXPECT_TRUE(flow->passwordStrength().has_value());
    flow->password = "password1234";
    flow->confirmation = "password1234";
    EXPECT_EQ(flow->passwordMessage(), std::string(BackupPassword::tooWeak));
    EXPECT_EQ(flow->passwordStrength()->level, PasswordStrength::Level::weak);
    EXPECT_FALSE(flow->mainButtonEnabled());

    flow->password = goodPassword;
    EXPECT_FALSE(flow->passwordMessage().has_value());
    EXPECT_EQ(flow->confirmationMessage(), std::string(BackupPassword::notRepeated));
    EXPECT_FALSE(flow->mainButtonEnabled());
    EXPECT_FALSE(flow->start(pathIn("early.vorlanebackup")).has_value());
    EXPECT_FALSE(std::filesystem::exists(pathIn("early.vorlanebackup")));
    flow->confirmation = goodPassword;
    EXPECT_FALSE(flow->confirmationMessage().has_value());
    EXPECT_TRUE(flow->mainButtonEnabled());
    EXPECT_EQ(flow->mainButtonTitle(), "Back Up\u2026");

    // A generated password fills both fields: there is nothing to mistype.
    flow->useGeneratedPassword("kX9#mQ2$vL7@pR4!");
    EXPECT_EQ(flow->confirmation, "kX9#mQ2$vL7@pR4!");
    EXPECT_TRUE(flow->mainButtonEnabled());
    EXPECT_EQ(flow->proposedFileName(), "Vorlane-Backup-2026-03-10.vorlanebackup");
}

TEST_F(BackupFlowTest, TheBackupHoldsTheVaultAndSaysWhatIsInIt) {
    Organization& acme = addOrganization("Acme Corp");
    Organization& home = addOrganization("Home Lab");
    addServiceWithPassword(acme, "Mail server", "mail-pw");
    addServiceWithPassword(home, "Router", "router-pw");
    // Names a password the keyring does not have.
    addService(home, "NAS", [](ServiceRecord& s) {
        s.secretKeychainID = ServiceRecord::makeSecretKeychainID();
    });
    auto flow = authenticatedFlow();
    flow->useGeneratedPassword(goodPassword);
    const std::string path = pathIn("full.vorlanebackup");
    std::optional<BackupFlow::Job> job = flow->start(path);
    ASSERT_TRUE(job.has_value());
    EXPECT_EQ(flow->step(), BackupFlow::Step::working);
    EXPECT_FALSE(flow->mainButtonEnabled());
    EXPECT_EQ(job->password, goodPassword);
    EXPECT_FALSE(std::filesystem::exists(path)) << "nothing on disk before it is sealed";

    flow->sealed(job->run, seal(*job));
    ASSERT_EQ(flow->step(), BackupFlow::Step::done);
    EXPECT_EQ(flow->doneText(), "Backed up 2 organizations and 3 services with 2 secrets. 1 secret "
                                "was not in the keyring and is missing from the backup.");
    EXPECT_EQ(flow->missingSecrets(), std::vector<std::string>{"the password of \"NAS\""});
    EXPECT_EQ(flow->savedPath(), path);
    EXPECT_EQ(flow->mainButtonTitle(), "Done");
    EXPECT_EQ(std::filesystem::status(path).permissions() & std::filesystem::perms::all,
              std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);

    std::string bytes;
    ASSERT_FALSE(BackupFile::read(path, bytes).has_value());
    Result<BackupContents, std::string> opened = BackupFile::open(bytes, goodPassword);
    ASSERT_TRUE(opened) << opened.error();
    EXPECT_EQ(opened.value().services.size(), 3U);
    EXPECT_EQ(opened.value().secrets.size(), 2U);
}

TEST_F(BackupFlowTest, OneOfEachIsSaidInTheSingular) {
    addServiceWithPassword(addOrganization("Solo"), "Only", "only-pw");
    auto flow = authenticatedFlow();
    flow->useGeneratedPassword(goodPassword);
    std::optional<BackupFlow::Job> job = flow->start(pathIn("one.vorlanebackup"));
    ASSERT_TRUE(job.has_value());
    flow->sealed(job->run, seal(*job));
    EXPECT_EQ(flow->doneText(), "Backed up 1 organization and 1 service with 1 secret.");
    EXPECT_TRUE(flow->missingSecrets().empty());
}

// Cancel while the key is derived, a folder that is gone and a failed sealing all leave no
// file, and the password step back with what was typed.
TEST_F(BackupFlowTest, ACancelledOrFailedBackupWritesNothing) {
    addServiceWithPassword(addOrganization("Acme Corp"), "Mail server", "mail-pw");
    auto flow = authenticatedFlow();
    flow->useGeneratedPassword(goodPassword);

    const std::string cancelledPath = pathIn("cancelled.vorlanebackup");
    std::optional<BackupFlow::Job> cancelled = flow->start(cancelledPath);
    ASSERT_TRUE(cancelled.has_value());
    flow->cancel();
    EXPECT_EQ(flow->step(), BackupFlow::Step::password);
    EXPECT_EQ(flow->password, goodPassword);
    flow->sealed(cancelled->run, seal(*cancelled)); // the worker ends after the cancel
    EXPECT_EQ(flow->step(), BackupFlow::Step::password);
    EXPECT_FALSE(std::filesystem::exists(cancelledPath));

    const std::string gonePath = pathIn("no-such-folder/backup.vorlanebackup");
    std::optional<BackupFlow::Job> gone = flow->start(gonePath);
    ASSERT_TRUE(gone.has_value());
    flow->sealed(gone->run, seal(*gone));
    EXPECT_EQ(flow->step(), BackupFlow::Step::password);
    ASSERT_TRUE(flow->error().has_value());
    EXPECT_EQ(flow->error()->rfind("The backup could not be saved: ", 0), 0U) << *flow->error();
    EXPECT_FALSE(std::filesystem::exists(gonePath));
    EXPECT_EQ(flow->confirmation, goodPassword);

    std::optional<BackupFlow::Job> unsealed = flow->start(cancelledPath);
    ASSERT_TRUE(unsealed.has_value());
    EXPECT_FALSE(flow->error().has_value()) << "a new attempt clears the last one's message";
    flow->sealed(unsealed->run, std::string());
    EXPECT_EQ(flow->error(), std::string(BackupFlow::sealFailed));
    EXPECT_FALSE(std::filesystem::exists(cancelledPath));
}

// A locked keyring cannot be read: no backup without its secrets is made silently.
TEST_F(BackupFlowTest, ALockedKeyringMakesNoBackup) {
    addServiceWithPassword(addOrganization("Acme Corp"), "Mail server", "mail-pw");
    auto flow = authenticatedFlow();
    flow->useGeneratedPassword(goodPassword);
    const std::string path = pathIn("locked.vorlanebackup");
    lockDefaultCollection();
    const std::optional<BackupFlow::Job> job = flow->start(path);
    unlockDefaultCollection();
    EXPECT_FALSE(job.has_value());
    EXPECT_EQ(flow->step(), BackupFlow::Step::password);
    EXPECT_EQ(flow->error(), std::string(BackupFlow::keyringUnreadable));
    EXPECT_FALSE(std::filesystem::exists(path));
}

} // namespace
} // namespace vorlane::testing
