#include "smc/Tool.h"

#include "support/FakeSensorNames.h"
#include "support/FakeSmc.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

namespace pulsebar::smc {
namespace {

/// A file that is a text.
class TextFile
{
public:
    TextFile()
        : m_file(::open_memstream(&m_text, &m_size))
    {
    }
    ~TextFile()
    {
        std::fclose(m_file);
        std::free(m_text); // NOLINT(cppcoreguidelines-no-malloc)
    }
    TextFile(const TextFile &) = delete;
    TextFile &operator=(const TextFile &) = delete;

    std::FILE *file() { return m_file; }
    std::string text()
    {
        std::fflush(m_file);
        return {m_text, m_size};
    }

private:
    char *m_text = nullptr;
    std::size_t m_size = 0;
    std::FILE *m_file;
};

class SmcProgram : public testing::Test
{
protected:
    SmcProgram() { m_smc.set("#KEY", "ui32", {0, 0, 0, 3}); }

    int act(Action action, const std::string &key = {}, const std::string &value = {})
    {
        return run({action, key, value}, {m_smc, m_names, m_out.file(), m_errors.file()});
    }
    void rest(const std::string &key)
    {
        m_smc.find(key)->bytesStatus = kSmcIoError;
        m_names.resting.insert(key);
    }

    FakeSmc m_smc;
    FakeSensorNames m_names;
    TextFile m_out;
    TextFile m_errors;
};

TEST_F(SmcProgram, ListsAllKeysAndTellsWhatTheyAre)
{
    m_smc.setFans(1);
    m_smc.setDegrees("Tcp0", 47, 16);
    m_smc.setDegrees("Tds0", 30);
    m_smc.set("#KEY", "ui32", {0, 0, 1, 2}); // of which two are counted
    m_names.say({{"Tcp0", "coretemp Package id 0"}, {"Tds0", "drivetemp 1"}});
    rest("Tds0");
    EXPECT_EQ(act(Action::ListKeys), kDone);
    EXPECT_EQ(m_out.text(), "  #KEY  [ui32]  2 (bytes 00 00 01 02)\n"
                            "  FNum  [ui8 ]  1 (bytes 01)\n"
                            "  Tcp0  [sp78]  (bytes 2f 40)\n"
                            "  Tds0  [sp78]  (bytes 00 00)\n"
                            "\n"
                            "Temperature sensors:\n"
                            "  Tcp0  coretemp Package id 0: 47.25 C\n"
                            "  Tds0  drivetemp 1: at rest\n");
    EXPECT_EQ(m_errors.text(), "");
    EXPECT_FALSE(m_smc.isOpen);
    EXPECT_EQ(m_smc.opened, m_smc.closed);
}

TEST_F(SmcProgram, AListWithoutNamesIsTheTableAlone)
{
    EXPECT_EQ(act(Action::ListKeys), kDone);
    EXPECT_EQ(m_out.text(), "  #KEY  [ui32]  3 (bytes 00 00 00 03)\n");
}

TEST_F(SmcProgram, ASensorThatFailsIsSaidToHave)
{
    m_smc.setDegrees("Tcp0", 47).bytesStatus = kSmcNoDevice;
    m_names.say({{"Tcp0", "coretemp Package id 0"}});
    EXPECT_EQ(act(Action::ListKeys), kDone);
    EXPECT_NE(m_out.text().find("Tcp0  coretemp Package id 0: no reading, its device is gone\n"),
              std::string::npos);
}

TEST_F(SmcProgram, ASensorAtRestIsSaidToBe)
{
    m_smc.setDegrees("Tds0", 30);
    rest("Tds0");
    EXPECT_EQ(act(Action::ReadKey, "Tds0"), kFailed);
    EXPECT_EQ(m_errors.text(), "pulsebar-smc: Tds0 has no reading: at rest\n");
}

TEST_F(SmcProgram, ReadsAKey)
{
    m_smc.setRpm("F0Ac", 1200);
    EXPECT_EQ(act(Action::ReadKey, "F0Ac"), kDone);
    EXPECT_EQ(m_out.text(), "  F0Ac  [fpe2]  1200 (bytes 12 c0)\n");
}

TEST_F(SmcProgram, AKeyThatIsNotThereIsAFailure)
{
    EXPECT_EQ(act(Action::ReadKey, "none"), kFailed);
    EXPECT_EQ(act(Action::WriteKey, "none", "00"), kFailed);
    EXPECT_EQ(m_out.text(), "");
    EXPECT_EQ(m_errors.text(), "pulsebar-smc: no key none\npulsebar-smc: no key none\n");
}

TEST_F(SmcProgram, AKeyThatCannotBeReadIsAFailure)
{
    m_smc.setRpm("F0Ac", 1200).infoStatus = 0xE00002EB;
    EXPECT_EQ(act(Action::ReadKey, "F0Ac"), kFailed);
    EXPECT_EQ(act(Action::WriteKey, "F0Ac", "0000"), kFailed);
    EXPECT_EQ(m_errors.text(), "pulsebar-smc: F0Ac has no reading: status e00002eb\n"
                               "pulsebar-smc: F0Ac cannot be read: status e00002eb\n");
}

TEST_F(SmcProgram, ShowsTheFans)
{
    m_smc.setFans(1);
    m_smc.setRpm("F0Ac", 1200);
    EXPECT_EQ(act(Action::ShowFans), kDone);
    EXPECT_EQ(m_out.text().find("Total fans in system: 1\n\nFan #0:\n    Actual speed : 1200\n"),
              0U);
    m_smc.find("FNum")->infoStatus = kSmcNotFound;
    EXPECT_EQ(act(Action::ShowFans), kFailed);
    EXPECT_EQ(m_errors.text(), "pulsebar-smc: no fans\n");
}

TEST_F(SmcProgram, WritesAKey)
{
    m_smc.setRpm("F0Mn", 1000);
    EXPECT_EQ(act(Action::WriteKey, "F0Mn", "1f40"), kDone);
    EXPECT_EQ(m_smc.find("F0Mn")->bytes, (FakeSmc::Bytes{0x1F, 0x40}));
    EXPECT_EQ(m_errors.text(), "");
}

TEST_F(SmcProgram, AWriteThatFailsIsSaid)
{
    m_smc.setRpm("F0Mn", 1000).writeStatus = kSmcNotPrivileged;
    EXPECT_EQ(act(Action::WriteKey, "F0Mn", "1f40"), kFailed);
    EXPECT_EQ(act(Action::WriteKey, "F0Mn", "1f"), kFailed);
    EXPECT_EQ(m_errors.text(), "Error: SMCWriteKey() = e00002c1\n"
                               "pulsebar-smc: F0Mn: permission denied\n"
                               "pulsebar-smc: F0Mn has 2 bytes\n");
    EXPECT_EQ(m_out.text(), "");
}

TEST_F(SmcProgram, WithoutAControllerNothingIsDone)
{
    m_smc.opening = {SmcOpening::NoService, 0};
    for (const Action action : {Action::ListKeys, Action::ShowFans})
        EXPECT_EQ(act(action), kFailed);
    EXPECT_EQ(m_errors.text(), "Error: no SMC found\nError: no SMC found\n");
    EXPECT_EQ(m_out.text(), "");
    EXPECT_EQ(m_smc.closed, 0);
}

} // namespace
} // namespace pulsebar::smc
