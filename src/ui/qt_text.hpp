#pragma once

#include <QString>

#include "markup/text.hpp"

namespace lorekeep::ui {

// The core's text and Qt's strings are both UTF-16: conversion is a copy.
inline QString toQString(TextView text) {
    return QString(reinterpret_cast<const QChar*>(text.data()),
                   static_cast<qsizetype>(text.size()));
}

inline Text fromQString(const QString& text) {
    return text.toStdU16String();
}

}  // namespace lorekeep::ui
