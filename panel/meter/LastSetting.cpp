#include "meter/LastSetting.h"

#include <QJsonDocument>

QJsonObject LastSetting::read(KTV_InterfaceConfig &settings, KTV_InterfaceConfig::SettingKey key)
{
    return QJsonDocument::fromJson(settings.getValue(key, QString()).toUtf8()).object();
}

void LastSetting::write(KTV_InterfaceConfig &settings, KTV_InterfaceConfig::SettingKey key,
                        const QJsonObject &setting)
{
    settings.setValue(key,
                      QString::fromUtf8(QJsonDocument(setting).toJson(QJsonDocument::Compact)));
}
