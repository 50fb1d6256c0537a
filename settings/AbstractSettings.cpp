#include "settings/AbstractSettings.h"

AbstractSettings::AbstractSettings(QObject *parent)
    : QObject(parent)
{}
