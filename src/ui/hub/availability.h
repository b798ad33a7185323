// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

class QWidget;

/// Whether a widget may be used, where several have a say in it: it is disabled while anybody has a
/// reason against it, and its tooltip and accessible description say which.
class Availability
{
public:
    /// `who` has a reason; `why` is said in the language of now and may be empty.
    static void hinder(QWidget& widget, const char* who, const QString& why);
    /// `who` has none any more.
    static void release(QWidget& widget, const char* who);
    /// hinder(), or release() for an empty `why`.
    static void set(QWidget& widget, const char* who, const QString& why);
};
