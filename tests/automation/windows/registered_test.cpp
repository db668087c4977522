// The component as a machine has it: entered into the registry by regsvr32 and taken out again, created by name from
// scripts and by a late-bound client. The registry belongs to all programs of a Windows, so one run at a time is here.
#include "zkr13n/raster_component.h"

#include <ole2.h>

#include <ocidl.h>
#include <olectl.h>

#include <raster_interfaces.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <string>
#include <thread>
#include <vector>

namespace {

// The registry's names are the same in capitals and small letters.
struct Less {
    bool operator()(const std::wstring& one, const std::wstring& other) const {
        return _wcsicmp(one.c_str(), other.c_str()) < 0;
    }
};
using Keys = std::map<std::wstring, std::wstring, Less>;

// A key, all values in it and all below it, by their paths: values as path:name.
void Read(HKEY key, const std::wstring& path, Keys* out) {
    std::vector<wchar_t> name(300), text(8192);
    for (DWORD index = 0;; ++index) {
        DWORD length = 300, bytes = DWORD((text.size() - 1) * sizeof(wchar_t)), type = 0;
        const LSTATUS status = RegEnumValueW(key, index, name.data(), &length, nullptr, &type,
                                             reinterpret_cast<BYTE*>(text.data()), &bytes);
        if (status == ERROR_NO_MORE_ITEMS) break;
        const bool plain = status == ERROR_SUCCESS && (type == REG_SZ || type == REG_EXPAND_SZ);
        text[bytes / sizeof(wchar_t)] = 0;
        (*out)[path + L":" + name.data()] = plain ? text.data() : L"(of type " + std::to_wstring(type) + L")";
    }
    for (DWORD index = 0;; ++index) {
        DWORD length = 300;
        HKEY child = nullptr;
        if (RegEnumKeyExW(key, index, name.data(), &length, nullptr, nullptr, nullptr, nullptr) !=
            ERROR_SUCCESS)
            break;
        const std::wstring below = path + L"\\" + name.data();
        (*out)[below] = L"";
        if (RegOpenKeyExW(key, name.data(), 0, KEY_READ, &child) != ERROR_SUCCESS) continue;
        Read(child, below, out);
        RegCloseKey(child);
    }
}

Keys Classes() {
    Keys keys;
    HKEY of = nullptr;
    for (HKEY root : {HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER}) {
        if (RegOpenKeyExW(root, L"Software\\Classes", 0, KEY_READ, &of) != ERROR_SUCCESS) continue;
        Read(of, root == HKEY_LOCAL_MACHINE ? L"" : L"(user)", &keys);
        RegCloseKey(of);
    }
    return keys;
}

// What is in one and not, or not so, in the other.
Keys Missing(const Keys& from, const Keys& in) {
    Keys missing;
    for (const auto& [path, value] : from)
        if (const auto found = in.find(path); found == in.end() || found->second != value)
            missing[path] = value;
    return missing;
}

std::string Narrow(const std::wstring& wide) {
    return std::string(wide.begin(), wide.end());
}

std::string Listed(const Keys& keys) {
    std::string text;
    for (const auto& [path, value] : keys)
        text += Narrow(path + L" = " + value) + "\n";
    return text;
}

std::wstring Text(REFGUID id) {
    wchar_t text[40];
    StringFromGUID2(id, text, 40);
    return text;
}

std::wstring LibraryPath() {
    wchar_t path[MAX_PATH];
    static const HMODULE library = LoadLibraryW(L"ZKR13N.dll"); // beside this program
    GetModuleFileNameW(library, path, MAX_PATH);
    return path;
}

std::string Contents(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

// What a program prints, and behind it how it ended. It goes through a file of its own: what the program starts may
// outlive it and keep that open.
std::string Output(std::string command) {
    static int number = 0;
    const std::string file = "registered_test_" + std::to_string(number++) + ".out";
    SECURITY_ATTRIBUTES inherited = {sizeof inherited, nullptr, TRUE};
    const HANDLE out = CreateFileA(file.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                   &inherited, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    STARTUPINFOA start = {};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdOutput = start.hStdError = out;
    PROCESS_INFORMATION process = {};
    DWORD status = 0;
    if (CreateProcessA(nullptr, command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &start,
                       &process) == 0)
        return command + " does not start, error " + std::to_string(GetLastError());
    WaitForSingleObject(process.hProcess, INFINITE);
    GetExitCodeProcess(process.hProcess, &status);
    CloseHandle(process.hProcess);
    CloseHandle(process.hThread);
    CloseHandle(out);
    std::string text = Contents(file);
    std::remove(file.c_str());
    std::erase(text, '\r');
    return text + "exit " + std::to_string(status) + "\n";
}

std::string Server(const char* option) {
    return Output(std::string("regsvr32 /s ") + option + " \"" + Narrow(LibraryPath()) + "\"");
}

constexpr wchar_t TableClass[] = L"{96B4D1F3-A85E-4E02-B7C9-3FD8402EA615}";
constexpr wchar_t Initialisable[] = L"{7DD95802-9882-11CF-9FA9-00AA006C42C4}";
constexpr wchar_t Scriptable[] = L"{7DD95801-9882-11CF-9FA9-00AA006C42C4}";

void AddClass(Keys* keys, const std::wstring& program, const std::wstring& name, const std::wstring& id,
              int bitmap) {
    const std::wstring path = LibraryPath(), of = L"\\CLSID\\" + id;
    Keys& to = *keys;
    for (const std::wstring& names : {L"\\" + program, L"\\" + program + L".13", of}) {
        to[names] = L"", to[names + L":"] = name;
    }
    const std::pair<std::wstring, std::wstring> below[] = {{L"\\" + program + L".13\\CLSID", id},
                                                           {L"\\" + program + L"\\CLSID", id},
                                                           {L"\\" + program + L"\\CurVer", program + L".13"},
                                                           {of + L"\\ProgID", program + L".13"},
                                                           {of + L"\\VersionIndependentProgID", program},
                                                           {of + L"\\InprocServer32", path}};
    for (const auto& [key, value] : below)
        to[key] = L"", to[key + L":"] = value;
    to[of + L"\\InprocServer32:ThreadingModel"] = L"Both";
    to[of + L"\\Programmable"] = L"";
    if (bitmap == 0) return;
    if (bitmap == 1) to[of + L"\\Control"] = L"";
    to[of + L"\\ToolboxBitmap32"] = to[of + L"\\DefaultIcon"] = L"";
    to[of + L"\\ToolboxBitmap32:"] = path + L", " + std::to_wstring(bitmap);
    to[of + L"\\DefaultIcon:"] = path + L", " + std::to_wstring(bitmap + 1);
}

Keys Expected() {
    Keys keys;
    AddClass(&keys, L"ZIRCRaster.ZIRCRaster", L"ZIRC Raster Object", Text(CLSID_ZIRCRaster), 1);
    AddClass(&keys, L"ZIRCRasterFactory.ZIRCRasterFactory", L"ZIRC Raster Factory",
             Text(CLSID_ZIRCRasterFactory), 3);
    AddClass(&keys, L"ZIRCRasterTable.ZIRCRasterTable", L"ZIRC Raster Table", TableClass, 0);
    const std::wstring implemented = L"\\CLSID\\" + Text(CLSID_ZIRCRaster) + L"\\Implemented Categories";
    for (const std::wstring& key :
         {implemented, implemented + L"\\" + Initialisable, implemented + L"\\" + Scriptable})
        keys[key] = L"";
    const std::wstring of = L"\\TypeLib\\" + Text(LIBID_ZIRCRasterLib), version = of + L"\\1.0";
    const std::wstring width = sizeof(void*) == 4 ? L"win32" : L"win64";
    for (const std::wstring& key : {of, version, version + L"\\0", version + L"\\0\\" + width,
                                    version + L"\\FLAGS", version + L"\\HELPDIR"})
        keys[key] = L"";
    keys[version + L":"] = L"ZIRC Raster Object Library";
    keys[version + L"\\0\\" + width + L":"] = LibraryPath();
    const std::pair<std::wstring, const IID*> interfaces[] = {
        {L"IZIRCRaster", &IID_IZIRCRaster},
        {L"_ZIRCRasterEvents", &DIID__ZIRCRasterEvents},
        {L"IZIRCRasterFactory", &IID_IZIRCRasterFactory}};
    for (const auto& [name, id] : interfaces) {
        const std::wstring key = L"\\Interface\\" + Text(*id);
        // What the system carries calls between apartments with: dispatch alone, or by the type library.
        const std::wstring proxy = name[0] == L'_' ? L"{00020420-0000-0000-C000-000000000046}"
                                                   : L"{00020424-0000-0000-C000-000000000046}";
        keys[key] = keys[key + L"\\ProxyStubClsid"] = keys[key + L"\\ProxyStubClsid32"] =
            keys[key + L"\\TypeLib"] = L"";
        keys[key + L":"] = name;
        keys[key + L"\\ProxyStubClsid:"] = keys[key + L"\\ProxyStubClsid32:"] = proxy;
        keys[key + L"\\TypeLib:"] = Text(LIBID_ZIRCRasterLib);
        keys[key + L"\\TypeLib:Version"] = L"1.0";
    }
    return keys;
}

// The machine's list of categories, which stays.
Keys Categories() {
    Keys keys;
    const std::wstring of = L"\\Component Categories";
    keys[of] = keys[of + L"\\" + Initialisable] = keys[of + L"\\" + Scriptable] = L"";
    keys[of + L"\\" + Initialisable + L":409"] = L"Controls safely initializable from persistent data!";
    keys[of + L"\\" + Scriptable + L":409"] = L"Controls safely scriptable!";
    return keys;
}

const std::string Good = "exit 0\n";

// The component is in the registry while the tests run.
class Registered : public testing::Environment {
  public:
    void SetUp() override {
        one_ = CreateMutexW(nullptr, FALSE, L"ZKR13N.registry.test");
        WaitForSingleObject(one_, INFINITE);
        Server("/u"); // what an earlier run has left that was ended
        Before = Classes();
        ASSERT_EQ(Server(""), Good);
    }
    void TearDown() override {
        EXPECT_EQ(Server("/u"), Good);
        ReleaseMutex(one_);
        CloseHandle(one_);
    }
    static inline Keys Before;

  private:
    HANDLE one_ = nullptr;
};

const auto* const registered = testing::AddGlobalTestEnvironment(new Registered);

TEST(Registration, EntersItsKeysAndLeavesNone) {
    Keys wanted = Expected();
    const Keys& before = Registered::Before;
    const Keys there = Classes();
    // What stands in these two is the system's affair.
    for (const wchar_t* name : {L"\\1.0\\FLAGS:", L"\\1.0\\HELPDIR:"}) {
        const std::wstring path = L"\\TypeLib\\" + Text(LIBID_ZIRCRasterLib) + name;
        if (there.count(path) != 0) wanted[path] = there.at(path);
    }
    EXPECT_EQ(Listed(Missing(before, there)), "") << "were changed or lost";
    EXPECT_EQ(Listed(Missing(wanted, there)), "") << "were not entered";
    wanted.merge(Categories());
    Keys extra = Missing(Missing(there, before), wanted);
    // A system of 64 bits shows interfaces and type libraries to programs of 32 bits too.
    const std::wstring other = L"\\Wow6432Node";
    std::erase_if(extra, [&](const auto& entry) {
        const auto& [path, value] = entry;
        const auto same = path.starts_with(other) ? wanted.find(path.substr(other.size())) : wanted.end();
        return same != wanted.end() && same->second == value;
    });
    EXPECT_EQ(Listed(extra), "") << "are of nobody's wish";
    EXPECT_EQ(Listed(Missing(Categories(), there)), "") << "were not entered";
    RecordProperty("keys", static_cast<int>(Expected().size()));

    // Another version of the type library is somebody else's.
    HKEY foreign = nullptr;
    const std::wstring version = L"Software\\Classes\\TypeLib\\" + Text(LIBID_ZIRCRasterLib);
    EXPECT_EQ(Server("/u"), Good);
    Keys after = Classes();
    EXPECT_EQ(Listed(Missing(before, after)), "");
    EXPECT_EQ(Listed(Missing(Missing(after, before), Categories())), "") << "were left";
    ASSERT_EQ(RegCreateKeyExW(HKEY_LOCAL_MACHINE, (version + L"\\7.5\\0\\win16").c_str(), 0, nullptr, 0,
                              KEY_READ, nullptr, &foreign, nullptr),
              0);
    EXPECT_EQ(Server("/u"), Good); // what is not there is no failure
    after = Classes();
    EXPECT_EQ(after.count(L"\\TypeLib\\" + Text(LIBID_ZIRCRasterLib) + L"\\7.5\\0\\win16"), 1u);
    RegCloseKey(foreign);
    EXPECT_EQ(RegDeleteTreeW(HKEY_LOCAL_MACHINE, version.c_str()), 0);
    EXPECT_EQ(Server(""), Good);
}

const std::filesystem::path Folder = ZKR_SCRIPTS;

std::vector<std::string> ScriptNames() {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(Folder))
        names.push_back(entry.path().filename().string());
    std::erase_if(names, [](const std::string& name) { return name.rfind("checks.", 0) == 0; });
    std::sort(names.begin(), names.end());
    return names;
}

// A script with what stands around it, in a file of its own.
std::string RunScript(const std::string& name, const std::string& text, const std::string& arguments = "") {
    const std::string file = "run_" + name;
    std::ofstream(file, std::ios::binary) << text;
    const std::string told = Output("cscript //nologo " + file + arguments);
    std::remove(file.c_str());
    return told;
}

class Scripts : public testing::TestWithParam<std::string> {};

// A script tells what is not as it should be, and at its end that it got there.
TEST_P(Scripts, FindAllAsItShouldBe) {
    const std::filesystem::path file(GetParam());
    const std::string checks = Contents(Folder / ("checks" + file.extension().string()));
    ASSERT_FALSE(checks.empty());
    const std::string told = RunScript(GetParam(), checks + Contents(Folder / file) + "\nTellEnd()\n");
    EXPECT_TRUE(told.find("\nall of ") != told.npos && told.ends_with(" hold\n" + Good)) << told;
}
std::string Identifier(const testing::TestParamInfo<std::string>& script) {
    std::string name = script.param;
    std::replace(name.begin(), name.end(), '.', '_');
    return name;
}
INSTANTIATE_TEST_SUITE_P(Members, Scripts, testing::ValuesIn(ScriptNames()), Identifier);

TEST(Examples, WatchTellsEventsWhileSinksLeave) {
    EXPECT_EQ(Output(ZKR_WATCH), "first: changed 0x10F\n"
                                 "first: 40 pixels wide, and leaves\n"
                                 "second: changed 0x10F\n"
                                 "second: changed 0x2\n"
                                 "second: region changed\n"
                                 "the object is gone, sinks are held by 0 others\n" +
                                     Good);
}

// The host of scripts may have no LoadPicture. The script's own one, which comes first anyway, gives a picture with a
// black mark of 4 by 2 pixels in its corner, on white.
TEST(Examples, WandPutsPictureAndSelectionOnTheClipboard) {
    const char* const picture = R"(
Function LoadPicture(file)
    Dim made, place
    WScript.Echo file
    Set made = CreateObject("ZIRCRaster.ZIRCRaster")
    made.CreateBitmap 20, 10, 24
    For place = 0 To 199
        If place Mod 20 > 3 Or place > 39 Then made.Pixel(place Mod 20, place \ 20) = vbWhite
    Next
    Set LoadPicture = made.GetPicture(0)
End Function
raster.FreeList
raster.Paste 0, 0
WScript.Echo raster.RgnWidth & " by " & raster.RgnHeight & ", " & Hex(raster.Pixel(4, 0)) & ", " & raster.Pixel(3, 1)
raster.Copy 0, 1
)";
    const std::string example = Contents(std::filesystem::path(ZKR_EXAMPLES) / "wand.vbs");
    EXPECT_EQ(RunScript("wand.vbs", example + picture, " some.bmp"),
              "some.bmp\n24 of 200 pixels\n6 by 4, FFFFFF, 0\n" + Good);
}

// A class object that this program stands in with for one of the registry, with licences or without.
class Class final : public IClassFactory2 {
  public:
    explicit Class(bool licensing) : licensing_(licensing) {}
    STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
        const bool known = IsEqualIID(iid, IID_IUnknown) || IsEqualIID(iid, IID_IClassFactory) ||
                           (licensing_ && IsEqualIID(iid, IID_IClassFactory2));
        *object = known ? this : nullptr;
        if (known) AddRef();
        return known ? S_OK : E_NOINTERFACE;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return ++References; }
    STDMETHODIMP_(ULONG) Release() override { return --References; }
    STDMETHODIMP CreateInstance(IUnknown*, REFIID iid, void** object) override {
        Told = L"plain";
        return QueryInterface(iid, object);
    }
    STDMETHODIMP LockServer(BOOL) override { return S_OK; }
    STDMETHODIMP GetLicInfo(LICINFO*) override { return E_NOTIMPL; }
    STDMETHODIMP RequestLicKey(DWORD, BSTR*) override { return E_NOTIMPL; }
    STDMETHODIMP CreateInstanceLic(IUnknown*, IUnknown*, REFIID iid, BSTR key, void** object) override {
        Told = key;
        return QueryInterface(iid, object);
    }

    ULONG References = 1;
    std::wstring Told;

  private:
    bool licensing_;
};

TEST(Factory, HandsLicencesToClassesThatCheckThem) {
    CoInitialize(nullptr);
    IZIRCRasterFactory* factory = nullptr;
    ASSERT_EQ(CoCreateInstance(CLSID_ZIRCRasterFactory, nullptr, CLSCTX_INPROC_SERVER, IID_IZIRCRasterFactory,
                               reinterpret_cast<void**>(&factory)),
              S_OK);
    BSTR name = SysAllocString(L"ZIRCRaster.ZIRCRaster"), foreign = SysAllocString(L"No.Class");
    const struct {
        bool Licensing;
        const wchar_t* Licence;
        const wchar_t* Told;
        HRESULT Result;
    } cases[] = {{true, nullptr, L"plain", S_OK}, {true, L"", L"plain", S_OK},
                 {true, L"key", L"key", S_OK},    {true, L"\u20AC", L"\u20AC", S_OK},
                 {false, L"", L"plain", S_OK},    {false, L"key", L"", E_NOINTERFACE}};
    for (const auto& [licensing, text, told, expected] : cases) {
        Class standIn(licensing);
        DWORD cookie = 0;
        ASSERT_EQ(CoRegisterClassObject(CLSID_ZIRCRaster, &standIn, CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE,
                                        &cookie),
                  S_OK);
        BSTR licence = SysAllocString(text); // null of null
        IUnknown* made = nullptr;
        EXPECT_EQ(factory->CreateObject(name, licence, &made), expected);
        EXPECT_EQ(standIn.Told, told);
        if (made != nullptr) made->Release();
        SysFreeString(licence);
        EXPECT_EQ(CoRevokeClassObject(cookie), S_OK);
        EXPECT_EQ(standIn.References, 1u);
    }
    IDispatch* none = nullptr;
    EXPECT_EQ(factory->CreateObject2(foreign, nullptr, &none), CO_E_CLASSSTRING);
    EXPECT_EQ(none, nullptr);
    SysFreeString(name);
    SysFreeString(foreign);
    factory->Release();
    CoUninitialize();
}

// What a client of another apartment does with the object, which the system reaches by the type library.
void UseFromAfar(IStream* stream) {
    CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    IZIRCRaster* proxy = nullptr;
    void* unmarshalled = nullptr;
    ASSERT_EQ(CoGetInterfaceAndReleaseStream(stream, IID_IZIRCRaster, &unmarshalled), S_OK);
    proxy = static_cast<IZIRCRaster*>(unmarshalled);
    short result = 1;
    float width = 0;
    OLE_COLOR colour = 0;
    VARIANT bytes;
    VariantInit(&bytes);
    EXPECT_EQ(proxy->CreateBitmap(6.5f, 4, 24, &result), S_OK);
    EXPECT_EQ(result, 0);
    EXPECT_EQ(proxy->get_BitmapWidth(&width), S_OK);
    EXPECT_EQ(width, 6);
    EXPECT_EQ(proxy->put_Pixel(5, 3, 0x332211), S_OK);
    EXPECT_EQ(proxy->get_PixelData(5, 3, &bytes), S_OK);
    EXPECT_EQ(V_VT(&bytes), VT_ARRAY | VT_UI1);
    EXPECT_EQ(proxy->put_PixelData(0, 0, bytes), S_OK);
    EXPECT_EQ(proxy->get_Pixel(0, 0, &colour), S_OK);
    EXPECT_EQ(colour, 0x332211u);
    VariantClear(&bytes);
    BSTR key = SysAllocString(L"key");
    EXPECT_EQ(proxy->UnlockSupport(3, key, &result), S_OK);
    SysFreeString(key);
    EXPECT_EQ(static_cast<uint32_t>(proxy->put_ScaleMode(8)), 0x800A4E2Du);
    EXPECT_EQ(AdviseChanged(proxy, 3, 1, 0, 0),
              E_NOINTERFACE); // companions share memory with the object itself
    proxy->Release();
    CoUninitialize();
}

TEST(Apartments, CarryCallsByTheTypeLibrary) {
    CoInitialize(nullptr);
    IZIRCRaster* raster = nullptr;
    IStream* stream = nullptr;
    ASSERT_EQ(CoCreateInstance(CLSID_ZIRCRaster, nullptr, CLSCTX_INPROC_SERVER, IID_IZIRCRaster,
                               reinterpret_cast<void**>(&raster)),
              S_OK);
    ASSERT_EQ(CoMarshalInterThreadInterfaceInStream(IID_IZIRCRaster, raster, &stream), S_OK);
    const HANDLE done = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    std::thread client([&] {
        UseFromAfar(stream);
        SetEvent(done);
    });
    while (MsgWaitForMultipleObjects(1, &done, FALSE, INFINITE, QS_ALLINPUT) != WAIT_OBJECT_0)
        for (MSG message; PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE);)
            DispatchMessageW(&message);
    client.join();
    CloseHandle(done);
    EXPECT_EQ(raster->Release(), 0u);
    CoUninitialize();
}

} // namespace
