// The library in the registry: classes, type library, categories.
#include "automation/windows/class_identifiers.h"
#include "automation/windows/interfaces.h"
#include "automation/windows/module.h"
#include "automation/windows/registry_script.h"
#include "automation/windows/type_info.h"
#include "zkr13n/raster_component.h"

#include <comcat.h>

#include <cwchar>
#include <iterator>

namespace zkr::automation {

namespace {

struct Class {
    int Script;
    const wchar_t* Name;
    const wchar_t* Program; // with the library's version
    const GUID* Id;
};

constexpr Class Classes[] = {
    {101, L"ZIRC Raster Object", L"ZIRCRaster.ZIRCRaster.13", &CLSID_ZIRCRaster},
    {102, L"ZIRC Raster Factory", L"ZIRCRasterFactory.ZIRCRasterFactory.13", &CLSID_ZIRCRasterFactory},
    {103, L"ZIRC Raster Table", L"ZIRCRasterTable.ZIRCRasterTable.13", &TableClass},
};

struct Category {
    GUID Id;
    const wchar_t* Description;
};

constexpr Category Categories[] = {
    {{0x7DD95802, 0x9882, 0x11CF, {0x9F, 0xA9, 0x00, 0xAA, 0x00, 0x6C, 0x42, 0xC4}},
     L"Controls safely initializable from persistent data!"},
    {{0x7DD95801, 0x9882, 0x11CF, {0x9F, 0xA9, 0x00, 0xAA, 0x00, 0x6C, 0x42, 0xC4}},
     L"Controls safely scriptable!"},
};

constexpr LCID English = 0x409;

#ifdef _WIN64
constexpr SYSKIND System = SYS_WIN64;
constexpr wchar_t LibraryVersion[] = L"\\1.0\\0\\win64";
#else
constexpr SYSKIND System = SYS_WIN32;
constexpr wchar_t LibraryVersion[] = L"\\1.0\\0\\win32";
#endif

// The component model for a scope, whether or not the caller has begun it.
class ComponentModel {
  public:
    ComponentModel() : begun_(SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) {}
    ~ComponentModel() {
        if (begun_) CoUninitialize();
    }
    ComponentModel(const ComponentModel&) = delete;
    ComponentModel& operator=(const ComponentModel&) = delete;

  private:
    bool begun_;
};

using Runner = HRESULT (*)(int resource, const Replacement* replacements, size_t count);

HRESULT Run(Runner run, const Class& of) {
    wchar_t path[MAX_PATH], id[40];
    if (!ModulePath(path)) return E_UNEXPECTED;
    StringFromGUID2(*of.Id, id, static_cast<int>(std::size(id)));
    id[37] = 0; // the scripts have the braces
    const Replacement replacements[] = {{L"VER_OBJECT_ID", of.Program},
                                        {L"VER_OBJECT_NAME", of.Name},
                                        {L"VER_OBJECT_UID", id + 1},
                                        {L"MODULE", path}};
    return run(of.Script, replacements, std::size(replacements));
}

HRESULT RegisterLibrary() {
    wchar_t path[MAX_PATH];
    if (!ModulePath(path)) return E_UNEXPECTED;
    Pointer<ITypeLib> library;
    const HRESULT result = LoadOwnLibrary(library.Out());
    return SUCCEEDED(result) ? RegisterTypeLib(library.get(), path, nullptr) : result;
}

bool KeyExists(const wchar_t* path) {
    HKEY key = nullptr;
    if (RegOpenKeyExW(HKEY_CLASSES_ROOT, path, 0, KEY_READ, &key) != ERROR_SUCCESS) return false;
    RegCloseKey(key);
    return true;
}

bool KeyOfIdExists(const wchar_t* folder, const GUID& id, const wchar_t* below = L"") {
    wchar_t path[80], text[40];
    StringFromGUID2(id, text, static_cast<int>(std::size(text)));
    std::wcscpy(path, folder);
    std::wcscat(path, text);
    std::wcscat(path, below);
    return KeyExists(path);
}

HRESULT RegisterCategory(ICatRegister& registrar, const Category& category) {
    CATEGORYINFO info = {};
    info.catid = category.Id;
    info.lcid = English;
    std::wcsncpy(info.szDescription, category.Description, 127);
    HRESULT result = registrar.RegisterCategories(1, &info);
    CATID id = category.Id;
    if (SUCCEEDED(result)) result = registrar.RegisterClassImplCategories(CLSID_ZIRCRaster, 1, &id);
    return result;
}

HRESULT CategoryRegistrar(Pointer<ICatRegister>& registrar) {
    return CoCreateInstance(CLSID_StdComponentCategoriesMgr, nullptr, CLSCTX_INPROC_SERVER, IID_ICatRegister,
                            registrar.OutUntyped());
}

HRESULT Register() {
    const ComponentModel begun;
    for (const Class& of : Classes)
        if (const HRESULT result = Run(RunScript, of); FAILED(result)) return result;
    HRESULT result = RegisterLibrary();
    Pointer<ICatRegister> registrar;
    if (SUCCEEDED(result)) result = CategoryRegistrar(registrar);
    for (const Category& category : Categories)
        if (SUCCEEDED(result)) result = RegisterCategory(*registrar.get(), category);
    return SUCCEEDED(result) ? S_OK : result;
}

HRESULT Unregister() {
    const ComponentModel begun;
    HRESULT failure = S_OK;
    const auto note = [&](HRESULT result) {
        if (FAILED(result) && SUCCEEDED(failure)) failure = result;
    };
    for (const Class& of : Classes)
        note(Run(UndoScript, of));
    // Versions and widths that others have entered stay.
    if (KeyOfIdExists(L"TypeLib\\", LIBID_ZIRCRasterLib, LibraryVersion))
        note(UnRegisterTypeLib(LIBID_ZIRCRasterLib, 1, 0, 0, System));
    // The class has taken its categories with it, unless removing it has failed.
    if (KeyOfIdExists(L"CLSID\\", CLSID_ZIRCRaster)) {
        Pointer<ICatRegister> registrar;
        const HRESULT result = CategoryRegistrar(registrar);
        note(result);
        for (const Category& category : Categories) {
            CATID id = category.Id;
            if (SUCCEEDED(result)) note(registrar->UnRegisterClassImplCategories(CLSID_ZIRCRaster, 1, &id));
        }
    }
    return failure;
}

} // namespace

} // namespace zkr::automation

HRESULT Z_CALL DllRegisterServer() {
    return zkr::automation::Register();
}

HRESULT Z_CALL DllUnregisterServer() {
    return zkr::automation::Unregister();
}
