#pragma once

#include <configuration/KTV_InterfaceConfig.h>

#include <QJsonObject>

/** The last settings of a page, stored in the library's settings for the next start. */
namespace LastSetting {

/** The stored setting; empty when there is none or it cannot be read. */
QJsonObject read(KTV_InterfaceConfig &settings, KTV_InterfaceConfig::SettingKey key);
void write(KTV_InterfaceConfig &settings, KTV_InterfaceConfig::SettingKey key,
           const QJsonObject &setting);

} // namespace LastSetting
