#include "FakeGraphWindow.h"
#include "controller/GraphScripting.h"
#include "controller/GraphWindowRegistry.h"
#include "support/QtPrinting.h"
#include "support/Text.h"

#include <gtest/gtest.h>

namespace pulsebar {
namespace {

class GraphScriptingTest : public testing::Test
{
protected:
    /// The error's name without its prefix; empty when the call succeeded.
    QString call(const char *name, const QString &key, GraphWindows *windows)
    {
        for (const BusMethod &method : graphWindowMethods(s("interface"), windows)) {
            if (method.name != s(name))
                continue;
            EXPECT_EQ(method.signature, s("s"));
            const BusResult result = method.call({key});
            if (const auto *error = std::get_if<BusError>(&result)) {
                EXPECT_FALSE(error->text.isEmpty());
                return error->name.section(u'.', -1);
            }
            EXPECT_FALSE(std::get<QVariant>(result).isValid());
            return {};
        }
        ADD_FAILURE() << name;
        return {};
    }
    QString call(const char *name, const QString &key) { return call(name, key, &registry); }

    static QVariant keys(GraphWindows *windows)
    {
        const BusProperty property = graphWindowKeysProperty(s("interface"), windows);
        EXPECT_EQ(property.name, s("graphWindowKeys"));
        EXPECT_FALSE(property.write);
        return std::get<QVariant>(property.read());
    }

    FakeGraphs graphs;
    GraphWindowRegistry registry{graphs.factory(), [](const QString &) { return std::nullopt; }};
};

TEST_F(GraphScriptingTest, OpensListsAndCloses)
{
    EXPECT_EQ(keys(&registry), QVariant(QStringList()));
    EXPECT_EQ(call("showGraphViewForKey", s("b")), QString());
    EXPECT_EQ(call("showGraphViewForKey", s("a\nb")), QString());
    EXPECT_EQ(call("showGraphViewForKey", s("b")), QString());
    EXPECT_EQ(graphs.of(s("b")).fronted, 1);
    EXPECT_EQ(keys(&registry), QVariant(QStringList{s("b"), s("a\nb")}));
    EXPECT_EQ(call("closeGraphViewForKey", s("b")), QString());
    EXPECT_EQ(keys(&registry), QVariant(QStringList{s("a\nb")}));
}

TEST_F(GraphScriptingTest, ClosingWhatIsNotOpenIsNoError)
{
    EXPECT_EQ(call("closeGraphViewForKey", s("b")), QString());
    EXPECT_EQ(call("closeGraphViewForKey", QString()), QString());
}

TEST_F(GraphScriptingTest, RefusesWhatIsNoKey)
{
    EXPECT_EQ(call("showGraphViewForKey", QString()), s("InvalidArgs"));
    EXPECT_EQ(call("showGraphViewForKey", QString(1025, u'x')), s("InvalidArgs"));
    EXPECT_TRUE(graphs.made.isEmpty());
}

TEST_F(GraphScriptingTest, RefusesTooMany)
{
    testing::internal::CaptureStderr();
    for (int i = 0; i < 256; ++i)
        EXPECT_EQ(call("showGraphViewForKey", QString::number(i)), QString());
    EXPECT_EQ(call("showGraphViewForKey", s("one more")), s("LimitsExceeded"));
    EXPECT_EQ(call("showGraphViewForKey", s("255")), QString());
    EXPECT_NE(testing::internal::GetCapturedStderr().find("256 graph windows"), std::string::npos);
}

TEST_F(GraphScriptingTest, ZeroBytesBecomeVisible)
{
    registry.showGraphViewForKey(s("a") + QChar(u'\0'));
    EXPECT_EQ(keys(&registry), QVariant(QStringList{s("a") + QChar(0xFFFD)}));
}

TEST_F(GraphScriptingTest, WithoutGraphWindows)
{
    EXPECT_EQ(keys(nullptr), QVariant(QStringList()));
    EXPECT_EQ(call("showGraphViewForKey", s("a"), nullptr), s("NotSupported"));
    EXPECT_EQ(call("closeGraphViewForKey", s("a"), nullptr), QString());
}

} // namespace
} // namespace pulsebar
