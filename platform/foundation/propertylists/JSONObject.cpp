#include "platform/foundation/propertylists/JSONObject.h"
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <limits>

namespace mac {

struct JSONObject::Content {
    QJsonObject object;
};

namespace {

QJsonValue memberOf(JSONObject::Content const& content, std::string_view key) {
    return content.object.value(QLatin1String(key.data(), static_cast<qsizetype>(key.size())));
}

Failure noObject() { return {"The outermost value is no object"}; }

} // namespace

Result<JSONObject, Failure> JSONObject::read(std::string_view document) {
    // The parser counts bytes in 32 bits.
    if (document.size() > static_cast<std::size_t>(std::numeric_limits<int>::max()))
        return Failure{"The document is too large"};
    QJsonParseError problem{};
    QByteArray const bytes = QByteArray::fromRawData(document.data(), static_cast<qsizetype>(document.size()));
    QJsonDocument const read = QJsonDocument::fromJson(bytes, &problem);
    if (problem.error != QJsonParseError::NoError)
        return Failure{"Not JSON at byte " + std::to_string(problem.offset) + ": " +
                       problem.errorString().toStdString()};
    if (!read.isObject()) return noObject();
    return JSONObject(std::make_shared<Content const>(Content{read.object()}));
}

bool JSONObject::has(std::string_view key) const { return !memberOf(*m_content, key).isUndefined(); }

bool JSONObject::isNull(std::string_view key) const { return memberOf(*m_content, key).isNull(); }

std::optional<std::string> JSONObject::text(std::string_view key) const {
    QJsonValue const value = memberOf(*m_content, key);
    if (!value.isString()) return std::nullopt;
    // What UTF-16 cannot pair becomes U+FFFD here.
    QByteArray const utf8 = value.toString().toUtf8();
    return std::string(utf8.constData(), static_cast<std::size_t>(utf8.size()));
}

std::optional<bool> JSONObject::flag(std::string_view key) const {
    QJsonValue const value = memberOf(*m_content, key);
    return value.isBool() ? std::optional(value.toBool()) : std::nullopt;
}

std::optional<std::int64_t> JSONObject::integer(std::string_view key) const {
    QJsonValue const value = memberOf(*m_content, key);
    // What is no integer answers whatever it is given for that case.
    bool const isInteger = value.isDouble() && (value.toInteger(0) != 0 || value.toInteger(1) == 0);
    return isInteger ? std::optional<std::int64_t>(value.toInteger()) : std::nullopt;
}

std::optional<std::vector<JSONObject>> JSONObject::objects(std::string_view key) const {
    QJsonValue const value = memberOf(*m_content, key);
    if (!value.isArray()) return std::nullopt;
    QJsonArray const array = value.toArray();
    std::vector<JSONObject> objects;
    objects.reserve(static_cast<std::size_t>(array.size()));
    for (qsizetype index = 0; index < array.size(); ++index) {
        QJsonValue const element = array.at(index);
        if (!element.isObject()) return std::nullopt;
        objects.emplace_back(std::make_shared<Content const>(Content{element.toObject()}));
    }
    return objects;
}

} // namespace mac
