#pragma once

#include <configuration/KTV_InterfaceConfig.h>

#include <QJsonObject>

/** What a screen was set to, kept in the library's settings until the next start. */
namespace LastSetting {

/** Empty when there is none, or none that can be read. */
QJsonObject read(KTV_InterfaceConfig &settings, KTV_InterfaceConfig::SettingKey key);
void write(KTV_InterfaceConfig &settings, KTV_InterfaceConfig::SettingKey key,
           const QJsonObject &setting);

} // namespace LastSetting
