#pragma once

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <typeinfo>

namespace stavelin::support {

/// The one instance of T for a run of the program: made on first use by the factory that the composition root
/// installed. Main thread only. Tests never come here: they build their objects themselves.
template <typename T>
class SharedInstance
{
public:
    static void install(std::function<std::unique_ptr<T>()> factory) { factorySlot() = std::move(factory); }

    /// Use before install() is a programmer's error and aborts with the type's name.
    static T &get()
    {
        if (!instanceSlot()) {
            if (!factorySlot()) {
                std::fprintf(stderr, "shared instance used before it was installed: %s\n", typeid(T).name());
                std::abort();
            }
            instanceSlot() = factorySlot()();
        }
        return *instanceSlot();
    }

    /// The composition root's: destroys the instance, if it was ever made, and forgets the factory.
    static void uninstall()
    {
        instanceSlot().reset();
        factorySlot() = nullptr;
    }

private:
    static std::function<std::unique_ptr<T>()> &factorySlot()
    {
        static std::function<std::unique_ptr<T>()> factory;
        return factory;
    }
    static std::unique_ptr<T> &instanceSlot()
    {
        static std::unique_ptr<T> instance;
        return instance;
    }
};

} // namespace stavelin::support
