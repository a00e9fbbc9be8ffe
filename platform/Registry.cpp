#include "platform/Registry.h"

#ifdef _WIN32
#include <windows.h>
#endif

namespace quarrynet {

#ifdef _WIN32

namespace {

class WindowsRegistry final : public Registry
{
public:
    std::optional<RegistryValue> query(std::uint32_t root, const std::string& key,
                                       const std::string& name) const override
    {
        // The rights to read and write values and subkeys, to get notifications, and the standard rights.
        constexpr REGSAM kAccess = 0x2003F;
        constexpr DWORD kBufferSize = 1024;

        // A predefined root is a small number in the shape of a handle, sign-extended on 64-bit systems.
        const auto rootKey = reinterpret_cast<HKEY>(static_cast<LONG_PTR>(static_cast<LONG>(root)));
        HKEY opened = nullptr;
        if (RegOpenKeyExA(rootKey, key.c_str(), 0, kAccess, &opened) != ERROR_SUCCESS)
            return std::nullopt;
        RegistryValue value{0, std::string(kBufferSize, '\0')};
        DWORD type = 0;
        DWORD size = kBufferSize;
        const LONG result =
            RegQueryValueExA(opened, name.c_str(), nullptr, &type, reinterpret_cast<BYTE*>(value.bytes.data()), &size);
        RegCloseKey(opened);
        if (result != ERROR_SUCCESS)
            return std::nullopt;
        value.type = type;
        value.bytes.resize(size);
        return value;
    }
};

} // namespace

std::unique_ptr<Registry> systemRegistry()
{
    return std::make_unique<WindowsRegistry>();
}

#else

namespace {

class NoRegistry final : public Registry
{
public:
    std::optional<RegistryValue> query(std::uint32_t /*root*/, const std::string& /*key*/,
                                       const std::string& /*name*/) const override
    {
        return std::nullopt;
    }
};

} // namespace

std::unique_ptr<Registry> systemRegistry()
{
    return std::make_unique<NoRegistry>();
}

#endif

} // namespace quarrynet
