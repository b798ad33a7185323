// SPDX-License-Identifier: MIT
#pragma once

/// Base of a class with one instance for the whole process, made on first use without a parent and
/// never destroyed. GUI thread only: the creation is not locked.
template <typename T> class UISingleton
{
public:
    static T* instance()
    {
        static T* const object = new T;
        return object;
    }

protected:
    UISingleton() = default;
    ~UISingleton() = default;
    UISingleton(const UISingleton&) = delete;
    UISingleton& operator=(const UISingleton&) = delete;
};
