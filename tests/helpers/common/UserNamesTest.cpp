#include "common/UserNames.h"

#include "helpers/common/TestFolder.h"

#include <gtest/gtest.h>

namespace pulsebar {
namespace {

constexpr std::string_view passwd = "root:x:0:0:root:/root:/bin/bash\n"
                                    "broken line\n"
                                    ":x:5:5::/:\n"
                                    ":x:7:7::/:\n"
                                    "short:x\n"
                                    "ten:x:10x:10::/:\n"
                                    "two words:x:1000:1000::/:\n"
                                    "last:x:7:7::/:";

TEST(UserNames, AreFoundInPasswd)
{
    EXPECT_EQ(findInPasswd(passwd, 0), "root");
    EXPECT_EQ(findInPasswd(passwd, 7), "last");
    EXPECT_EQ(findInPasswd(passwd, 1000), "two words");
    EXPECT_EQ(findInPasswd(passwd, 5), "");
    EXPECT_EQ(findInPasswd(passwd, 10), "");
    EXPECT_EQ(findInPasswd("", 0), "");
}

TEST(UserNames, AreOneWordAndElseANumber)
{
    const TestFolder folder;
    folder.write("passwd", std::string(passwd));
    UserNames names(folder.path() + "/passwd");
    EXPECT_EQ(names.nameOf(1000), "two_words");
    EXPECT_EQ(names.nameOf(4000000000U), "4000000000");
    folder.remove("passwd");
    EXPECT_EQ(names.nameOf(1000), "two_words"); // not asked for twice
}

TEST(UserNames, DoWithoutTheLocalList)
{
    UserNames names("/nonexistent/passwd");
    EXPECT_EQ(names.nameOf(4000000000U), "4000000000");
    EXPECT_EQ(names.nameOf(0), "root"); // from the system's name services
}

} // namespace
} // namespace pulsebar
