#pragma once

#include <QSettings>

#include "platform/UserDefaults.h"

#include <filesystem>

namespace stavelin::platform::qt {

/// The settings in one file of the desktop's configuration folder, in INI format. Main thread.
class SettingsUserDefaults final : public UserDefaults
{
public:
    /// $XDG_CONFIG_HOME/Stavelin/stavelin.conf, with ~/.config where that is not set.
    SettingsUserDefaults();
    /// An absolute path; the file need not exist.
    explicit SettingsUserDefaults(const std::filesystem::path &file);

    [[nodiscard]] std::int64_t integer(std::string_view key) const override;
    void setInteger(std::string_view key, std::int64_t value) override;
    [[nodiscard]] std::string string(std::string_view key) const override;
    void setString(std::string_view key, std::string_view value) override;

private:
    void write(std::string_view key, const QVariant &value);

    QSettings m_settings;
};

} // namespace stavelin::platform::qt
