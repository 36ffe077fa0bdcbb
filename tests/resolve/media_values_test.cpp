#include "resolve/media_values.h"

#include "support/texts.h"

#include <QJsonDocument>

#include <limits>

namespace reelcrate {
namespace {

QJsonObject object(const QString& json) {
    return QJsonDocument::fromJson(json.toUtf8()).object();
}

TEST(StringValue, ReadsWhatTheToolsWrite) {
    const auto read = [](const QString& value) {
        return stringValue(object(text("{\"x\": ") + value + u'}').value(u"x"));
    };
    expectTexts(read, {{R"(" \t a b \u00a0\n")", "a b"},
                       {"213", "213"},
                       {"213.0", "213"},
                       {"52.5", "52.5"},
                       {"0.1", "0.1"},
                       {"9007199254740993", "9007199254740993"},
                       {"-9223372036854775808", "-9223372036854775808"},
                       {"1e300", "1e+300"},
                       {"true", "1"},
                       {"false", "0"},
                       {"null", ""},
                       {"[1]", ""},
                       {R"({"a": 1})", ""}});
    EXPECT_EQ(stringValue(QJsonValue(QJsonValue::Undefined)), QString());
    EXPECT_EQ(stringValue(QJsonValue(213.0)), text("213"));
}

TEST(DurationText, PrefersTheToolsOwnText) {
    expectTexts([](const QString& media) { return durationText(object(media)); },
                {{R"({"duration": 213.0})", "3:33"},
                 {R"({"duration": 213.0, "duration_string": "3:34"})", "3:34"},
                 {R"({"duration": 213, "duration_string": " "})", "3:33"},
                 {R"({"duration": "213"})", ""},
                 {R"({"duration": null, "duration_string": null})", ""},
                 {R"({"duration": true})", "0:01"},
                 {"{}", ""}});
}

TEST(ThumbnailURL, IsTheLastOfTheList) {
    expectTexts([](const QString& media) { return thumbnailURL(object(media)); },
                {{R"({"thumbnails": [{"url": "a"}, {"url": " c "}], "thumbnail": "t"})", "c"},
                 {R"({"thumbnails": [{"url": "a"}, {"height": 1}], "thumbnail": "t"})", ""},
                 {R"({"thumbnails": [], "thumbnail": "t"})", ""},
                 {R"({"thumbnails": [{"url": "a"}, null], "thumbnail": "t"})", "t"},
                 {R"({"thumbnails": {"url": "a"}, "thumbnail": "t"})", "t"},
                 {"{}", ""}});
}

}  // namespace
}  // namespace reelcrate
