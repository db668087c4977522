// The type library that the DLL carries, read back as clients read it and held against its source: names, order,
// identifiers, kinds, types and flags of every member, values of the enumerations, interfaces of the classes.
#include <ole2.h>

#include <ocidl.h>

#include <raster_interfaces.h>

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <map>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

namespace {

struct Parameter {
    std::string Name, Type;
    int Flags;
};
struct Member {
    std::string Name, Result;
    int Id, Kind;
    std::vector<Parameter> Parameters;
};
using Enumeration = std::vector<std::pair<std::string, long>>;

// A file of the source, without its comments.
std::string Text(const char* file) {
    std::ifstream in(std::string(ZKR_IDL_FOLDER "/") + file);
    std::string text((std::istreambuf_iterator<char>(in)), {});
    EXPECT_FALSE(text.empty()) << file;
    for (size_t start; (start = text.find("/*")) != text.npos;)
        text.erase(start, text.find("*/", start) + 2 - start);
    return text;
}

// Passes what a pattern finds in each statement of a text, which ends with a sign.
template <typename Body> void ForEach(const std::string& text, char end, const char* pattern, Body body) {
    const std::regex regex(pattern);
    std::istringstream statements(text);
    for (std::string statement; std::getline(statements, statement, end);)
        if (std::smatch found; std::regex_search(statement, found, regex)) body(found);
}

// Passes the blocks in braces, with what stands before and behind them up to the next sign.
template <typename Body> void ForEachBlock(const std::string& text, Body body) {
    for (size_t end = 0; (end = text.find('}', end)) != text.npos; ++end) {
        const size_t start = text.rfind('{', end), before = text.find_last_of(";{}]", start - 1) + 1;
        body(text.substr(before, start - before), text.substr(start + 1, end - start - 1),
             text.substr(end + 1, text.find(';', end) - end - 1));
    }
}

// The type of a source, in the terms of the binary form.
std::string Plain(std::string type) {
    std::erase(type, ' ');
    return std::regex_replace(type, std::regex("LONG_PTR"), sizeof(void*) == 4 ? "long" : "__int64");
}

Member SourceMember(const std::smatch& line) {
    Member member{line[5], line[4], std::stoi(line[1]), INVOKE_FUNC, {}};
    if (line[3] == "propget") member.Kind = INVOKE_PROPERTYGET;
    if (line[3] == "propput") member.Kind = INVOKE_PROPERTYPUT;
    const std::string parts = std::regex_replace(line[6].str(), std::regex("out, "), "");
    ForEach(parts, ',', "\\[(\\w+)\\] (.*?)(\\w+)$", [&](const std::smatch& part) {
        const int flags = part[1] == "in" ? PARAMFLAG_FIN : PARAMFLAG_FOUT | PARAMFLAG_FRETVAL;
        member.Parameters.push_back({part[3], Plain(part[2]), flags});
    });
    return member;
}

std::map<std::string, std::vector<Member>> SourceInterfaces() {
    std::map<std::string, std::vector<Member>> interfaces;
    ForEachBlock(Text("raster.idl"), [&](std::string head, std::string body, std::string) {
        std::smatch found;
        if (head.find("coclass") != head.npos ||
            !std::regex_search(head, found, std::regex("interface (\\w+)")))
            return;
        std::vector<Member>& members = interfaces[found[1]];
        ForEach(body, ';', "\\[id\\((\\d+)\\)(, (\\w+))?\\] (\\w+) (\\w+)\\((.*)\\)$",
                [&](const std::smatch& line) { members.push_back(SourceMember(line)); });
    });
    return interfaces;
}

std::map<std::string, Enumeration> SourceEnumerations() {
    std::map<std::string, Enumeration> enumerations;
    ForEachBlock(Text("enumerations.idl"), [&](std::string, std::string body, std::string name) {
        std::erase(name, ' ');
        ForEach(body, ',', "(\\w+) = (\\d+)", [&](const std::smatch& line) {
            enumerations[name].emplace_back(line[1], std::stol(line[2]));
        });
    });
    return enumerations;
}

std::string Taken(BSTR text) {
    const std::wstring wide(text != nullptr ? text : L"");
    SysFreeString(text);
    return std::string(wide.begin(), wide.end());
}

std::string NameOf(ITypeInfo* info) {
    BSTR name = nullptr;
    EXPECT_EQ(info->GetDocumentation(MEMBERID_NIL, &name, nullptr, nullptr, nullptr), S_OK);
    return Taken(name);
}

std::string TypeName(ITypeInfo* info, const TYPEDESC& type) {
    static const std::map<int, const char*> names = {{VT_I2, "short"},
                                                     {VT_I4, "long"},
                                                     {VT_R4, "float"},
                                                     {VT_R8, "double"},
                                                     {VT_BOOL, "VARIANT_BOOL"},
                                                     {VT_UI4, "OLE_COLOR"},
                                                     {VT_BSTR, "BSTR"},
                                                     {VT_VARIANT, "VARIANT"},
                                                     {VT_I8, "__int64"},
                                                     {VT_VOID, "void"},
                                                     {VT_DISPATCH, "IDispatch*"},
                                                     {VT_UNKNOWN, "IUnknown*"},
                                                     {VT_HRESULT, "HRESULT"}};
    if (type.vt == VT_PTR) return TypeName(info, *type.lptdesc) + "*";
    if (type.vt == VT_USERDEFINED) {
        ITypeInfo* other = nullptr;
        EXPECT_EQ(info->GetRefTypeInfo(type.hreftype, &other), S_OK);
        const std::string name = NameOf(other);
        other->Release();
        return name;
    }
    return names.count(type.vt) != 0 ? names.at(type.vt) : "type " + std::to_string(type.vt);
}

class TypeLibrary : public testing::Test {
  protected:
    void SetUp() override {
        wchar_t path[MAX_PATH];
        GetModuleFileNameW(LoadLibraryW(L"ZKR13N.dll"), path, MAX_PATH); // beside this program
        ASSERT_EQ(LoadTypeLibEx(path, REGKIND_NONE, &library), S_OK);
    }
    void TearDown() override {
        if (library != nullptr) library->Release();
    }

    // All of a kind, by their names.
    std::map<std::string, ITypeInfo*> All(TYPEKIND wanted) {
        std::map<std::string, ITypeInfo*> found;
        for (UINT index = 0; index < library->GetTypeInfoCount(); ++index) {
            TYPEKIND kind;
            ITypeInfo* info = nullptr;
            EXPECT_EQ(library->GetTypeInfoType(index, &kind), S_OK);
            EXPECT_EQ(library->GetTypeInfo(index, &info), S_OK);
            if (kind == wanted)
                found[NameOf(info)] = info;
            else
                info->Release();
        }
        return found;
    }
    // Holds a function against its source; place is that in the table of a dual interface, and -1 elsewhere.
    void Compare(ITypeInfo* info, UINT index, const Member& member, int place) {
        SCOPED_TRACE(member.Name + (member.Kind == INVOKE_PROPERTYPUT ? " put" : ""));
        FUNCDESC* function = nullptr;
        ASSERT_EQ(info->GetFuncDesc(index, &function), S_OK);
        BSTR names[16] = {};
        UINT count = 0;
        EXPECT_EQ(info->GetNames(function->memid, names, 16, &count), S_OK);
        EXPECT_EQ(function->memid, member.Id);
        EXPECT_EQ(function->invkind, member.Kind);
        EXPECT_EQ(function->callconv, CC_STDCALL);
        EXPECT_EQ(function->funckind, place < 0 ? FUNC_DISPATCH : FUNC_PUREVIRTUAL);
        EXPECT_TRUE(place < 0 || function->oVft == place * int(sizeof(void*))) << function->oVft;
        EXPECT_EQ(function->cParamsOpt, 0);
        EXPECT_EQ(function->wFuncFlags, 0);
        EXPECT_EQ(TypeName(info, function->elemdescFunc.tdesc), member.Result);
        EXPECT_EQ(size_t(function->cParams), member.Parameters.size());
        EXPECT_EQ(Taken(names[0]), member.Name);
        for (UINT name = 1; name < count; ++name) {
            const std::string text = Taken(names[name]);
            // The value of a put has none. A library knows a name in one spelling alone, whatever has it.
            EXPECT_TRUE(name <= member.Parameters.size() && text == member.Parameters[name - 1].Name) << text;
        }
        for (size_t part = 0; part < member.Parameters.size() && part < size_t(function->cParams); ++part) {
            const ELEMDESC& parameter = function->lprgelemdescParam[part];
            EXPECT_EQ(TypeName(info, parameter.tdesc), member.Parameters[part].Type);
            EXPECT_EQ(parameter.paramdesc.wParamFlags, member.Parameters[part].Flags);
            EXPECT_EQ(parameter.paramdesc.pparamdescex, nullptr);
        }
        info->ReleaseFuncDesc(function);
        ++compared;
    }

    ITypeLib* library = nullptr;
    int compared = 0;
};

TEST_F(TypeLibrary, MembersAreThoseOfItsSource) {
    const auto source = SourceInterfaces();
    ASSERT_EQ(source.size(), 3u);
    for (auto& [name, info] : All(TKIND_DISPATCH)) {
        ASSERT_EQ(source.count(name), 1u) << name;
        const std::vector<Member>& members = source.at(name);
        ITypeInfo* table = info; // of a dual interface the functions in its table
        HREFTYPE reference = 0;
        const bool dual = name != "_ZIRCRasterEvents";
        if (dual) {
            ASSERT_EQ(info->GetRefTypeOfImplType(static_cast<UINT>(-1), &reference), S_OK);
            ASSERT_EQ(info->GetRefTypeInfo(reference, &table), S_OK);
        }
        TYPEATTR* attributes = nullptr;
        ASSERT_EQ(table->GetTypeAttr(&attributes), S_OK);
        EXPECT_EQ(attributes->cFuncs, members.size());
        EXPECT_EQ(attributes->cVars, 0);
        const int flags =
            dual ? TYPEFLAG_FDUAL | TYPEFLAG_FOLEAUTOMATION | TYPEFLAG_FDISPATCHABLE : TYPEFLAG_FDISPATCHABLE;
        EXPECT_EQ(attributes->wTypeFlags, flags) << name;
        const UINT count = attributes->cFuncs;
        table->ReleaseTypeAttr(attributes);
        for (UINT index = 0; index < count && index < members.size(); ++index)
            Compare(table, index, members[index], dual ? int(index) + 7 : -1);
        if (dual) table->Release();
        info->Release();
    }
    EXPECT_EQ(compared, 148 + 2 + 2);
}

TEST_F(TypeLibrary, EnumerationsHaveTheirValues) {
    auto source = SourceEnumerations();
    EXPECT_EQ(source.size(), 16u);
    for (auto& [name, info] : All(TKIND_ENUM)) {
        TYPEATTR* attributes = nullptr;
        ASSERT_EQ(info->GetTypeAttr(&attributes), S_OK);
        Enumeration values;
        for (UINT index = 0; index < attributes->cVars; ++index) {
            VARDESC* variable = nullptr;
            ASSERT_EQ(info->GetVarDesc(index, &variable), S_OK);
            BSTR text = nullptr;
            EXPECT_EQ(info->GetDocumentation(variable->memid, &text, nullptr, nullptr, nullptr), S_OK);
            values.emplace_back(Taken(text), V_I4(variable->lpvarValue));
            info->ReleaseVarDesc(variable);
        }
        info->ReleaseTypeAttr(attributes);
        info->Release();
        EXPECT_EQ(values, source[name]) << name;
        source.erase(name);
    }
    EXPECT_TRUE(source.empty());
}

TEST_F(TypeLibrary, ClassesAndLibraryAreNamed) {
    TLIBATTR* attributes = nullptr;
    ASSERT_EQ(library->GetLibAttr(&attributes), S_OK);
    EXPECT_TRUE(IsEqualGUID(attributes->guid, LIBID_ZIRCRasterLib));
    EXPECT_EQ(attributes->wMajorVerNum, 1);
    EXPECT_EQ(attributes->wMinorVerNum, 0);
    EXPECT_EQ(attributes->lcid, 0u);
    EXPECT_EQ(attributes->syskind, sizeof(void*) == 4 ? SYS_WIN32 : SYS_WIN64);
    library->ReleaseTLibAttr(attributes);
    BSTR text = nullptr;
    EXPECT_EQ(library->GetDocumentation(-1, &text, nullptr, nullptr, nullptr), S_OK);
    EXPECT_EQ(Taken(text), "ZIRCRasterLib");
    std::string told;
    for (auto& [name, info] : All(TKIND_COCLASS)) {
        TYPEATTR* of = nullptr;
        ASSERT_EQ(info->GetTypeAttr(&of), S_OK);
        for (UINT index = 0; index < of->cImplTypes; ++index) {
            HREFTYPE reference = 0;
            ITypeInfo* other = nullptr;
            int flags = 0;
            EXPECT_EQ(info->GetRefTypeOfImplType(index, &reference), S_OK);
            EXPECT_EQ(info->GetRefTypeInfo(reference, &other), S_OK);
            EXPECT_EQ(info->GetImplTypeFlags(index, &flags), S_OK);
            told += name + " " + NameOf(other) + " " + std::to_string(flags) + "\n";
            other->Release();
        }
        info->ReleaseTypeAttr(of);
        info->Release();
    }
    EXPECT_EQ(told, "ZIRCRaster IZIRCRaster 1\nZIRCRaster _ZIRCRasterEvents 3\n"
                    "ZIRCRasterFactory IZIRCRasterFactory 1\n");
}

TEST(Resources, AreWhereTheRegistryPoints) {
    const HMODULE library = LoadLibraryW(L"ZKR13N.dll");
    for (const int script : {101, 102, 103})
        EXPECT_NE(FindResourceW(library, MAKEINTRESOURCEW(script), L"REGISTRY"), nullptr) << script;
    for (const int number : {1, 3}) {
        const HBITMAP bitmap = LoadBitmapW(library, MAKEINTRESOURCEW(number));
        EXPECT_NE(bitmap, nullptr) << number;
        DeleteObject(bitmap);
        EXPECT_NE(LoadIconW(library, MAKEINTRESOURCEW(number + 1)), nullptr) << number;
    }
    FreeLibrary(library);
}

} // namespace
