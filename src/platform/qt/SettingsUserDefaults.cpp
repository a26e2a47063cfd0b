#include "platform/qt/SettingsUserDefaults.h"

#include <QFile>
#include <QStandardPaths>
#include <QVariant>

namespace stavelin::platform::qt {

namespace {

QString utf16(std::string_view text)
{
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

std::filesystem::path fileOfTheUser()
{
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    return std::filesystem::path(QFile::encodeName(folder).toStdString()) / "Stavelin" / "stavelin.conf";
}

} // namespace

SettingsUserDefaults::SettingsUserDefaults() : SettingsUserDefaults(fileOfTheUser()) {}

SettingsUserDefaults::SettingsUserDefaults(const std::filesystem::path &file)
    : m_settings(QFile::decodeName(file.c_str()), QSettings::IniFormat)
{}

std::int64_t SettingsUserDefaults::integer(std::string_view key) const
{
    return m_settings.value(utf16(key)).toLongLong(); // 0 for what is no integer
}

void SettingsUserDefaults::setInteger(std::string_view key, std::int64_t value)
{
    write(key, static_cast<qlonglong>(value));
}

std::string SettingsUserDefaults::string(std::string_view key) const
{
    return m_settings.value(utf16(key)).toString().toStdString();
}

void SettingsUserDefaults::setString(std::string_view key, std::string_view value)
{
    write(key, utf16(value));
}

void SettingsUserDefaults::write(std::string_view key, const QVariant &value)
{
    m_settings.setValue(utf16(key), value);
    m_settings.sync();
}

} // namespace stavelin::platform::qt
