#include "automation/windows/registry_script.h"

#include "automation/array.h"
#include "automation/windows/module.h"

#include <cwchar>
#include <iterator>

namespace zkr::automation {

namespace {

constexpr int DeepestKey = 16;

// Of a resource of the type "REGISTRY".
struct Script {
    const char* Text;
    size_t Length;
};

bool Find(int resource, Script* script) {
    HRSRC place = FindResourceW(ThisModule(), MAKEINTRESOURCEW(resource), L"REGISTRY");
    if (place == nullptr) return false;
    HGLOBAL block = LoadResource(ThisModule(), place);
    script->Text = block != nullptr ? static_cast<const char*>(LockResource(block)) : nullptr;
    script->Length = SizeofResource(ThisModule(), place);
    return script->Text != nullptr;
}

// Cuts a script into words, quoted texts and signs, with the replacements made.
class Words {
  public:
    Words(const Script& script, const Replacement* replacements, size_t count)
        : next_(script.Text), end_(script.Text + script.Length), replacements_(replacements), count_(count) {
        Advance();
    }

    const wchar_t* Word() const { return word_; }
    bool Is(const wchar_t* word) const { return !quoted_ && std::wcscmp(word_, word) == 0; }
    bool IsText() const { return quoted_; }
    bool AtEnd() const { return ended_; }
    bool IsBroken() const { return broken_; } // a text without an end, or too long
    bool Take(const wchar_t* word) {
        if (ended_ || !Is(word)) return false;
        Advance();
        return true;
    }
    void Advance();

  private:
    static bool IsSpace(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }
    void Append(wchar_t c) {
        if (length_ + 1 < std::size(word_)) {
            word_[length_++] = c;
        } else {
            broken_ = true;
        }
    }
    bool AppendReplacement();

    const char* next_;
    const char* end_;
    const Replacement* replacements_;
    size_t count_;
    wchar_t word_[2 * MAX_PATH];
    size_t length_ = 0;
    bool quoted_ = false;
    bool ended_ = false;
    bool broken_ = false;
};

// At a percent sign.
bool Words::AppendReplacement() {
    for (size_t index = 0; index < count_; ++index) {
        const size_t length = std::wcslen(replacements_[index].Word);
        if (static_cast<size_t>(end_ - next_) < length + 2 || next_[length + 1] != '%') continue;
        size_t same = 0;
        while (same < length && static_cast<wchar_t>(next_[same + 1]) == replacements_[index].Word[same])
            ++same;
        if (same != length) continue;
        for (const wchar_t* c = replacements_[index].Text; *c != 0; ++c)
            Append(*c);
        next_ += length + 2;
        return true;
    }
    return false;
}

void Words::Advance() {
    while (next_ != end_ && IsSpace(*next_))
        ++next_;
    length_ = 0;
    word_[0] = 0;
    ended_ = next_ == end_;
    if (ended_) return;
    quoted_ = *next_ == '\'';
    if (quoted_) ++next_;
    while (next_ != end_ && (quoted_ ? *next_ != '\'' : !IsSpace(*next_))) {
        if (*next_ == '%' && AppendReplacement()) continue;
        Append(static_cast<unsigned char>(*next_++));
    }
    if (quoted_) {
        if (next_ == end_)
            broken_ = true;
        else
            ++next_;
    }
    word_[length_] = 0;
}

HRESULT Failed(LSTATUS status) {
    return HRESULT_FROM_WIN32(static_cast<DWORD>(status));
}

class OpenKey {
  public:
    OpenKey() = default;
    ~OpenKey() {
        if (key_ != nullptr) RegCloseKey(key_);
    }
    OpenKey(const OpenKey&) = delete;
    OpenKey& operator=(const OpenKey&) = delete;
    HKEY* Out() { return &key_; }
    HKEY get() const { return key_; }

  private:
    HKEY key_ = nullptr;
};

class Interpreter {
  public:
    Interpreter(const Script& script, const Replacement* replacements, size_t count, bool undo)
        : words_(script, replacements, count), undo_(undo) {}

    HRESULT Run() {
        if (!words_.Take(L"HKCR") || !words_.Take(L"{")) return DISP_E_EXCEPTION;
        const HRESULT result = Keys(HKEY_CLASSES_ROOT, 0);
        if (SUCCEEDED(result) && (!words_.AtEnd() || words_.IsBroken())) return DISP_E_EXCEPTION;
        return SUCCEEDED(result) ? failure_ : result;
    }

  private:
    HRESULT Keys(HKEY parent, int depth);
    HRESULT Key(HKEY parent, int depth);
    HRESULT Value(HKEY key, const wchar_t* name);
    HRESULT Remove(HKEY parent, const wchar_t* name);

    Words words_;
    bool undo_;
    HRESULT failure_ = S_OK; // the first one, while undoing
};

// Up to the closing brace. Without a parent, which is gone, the script is only read.
HRESULT Interpreter::Keys(HKEY parent, int depth) {
    while (!words_.Take(L"}")) {
        if (words_.AtEnd() || words_.IsBroken() || depth > DeepestKey) return DISP_E_EXCEPTION;
        HRESULT result;
        if (words_.Take(L"val")) {
            wchar_t name[64] = {};
            std::wcsncpy(name, words_.Word(), std::size(name) - 1);
            words_.Advance();
            result = words_.Take(L"=") ? Value(parent, name) : DISP_E_EXCEPTION;
        } else {
            result = Key(parent, depth);
        }
        if (FAILED(result)) return result;
    }
    return S_OK;
}

HRESULT Interpreter::Value(HKEY key, const wchar_t* name) {
    if (!words_.Take(L"s") || !words_.IsText()) return DISP_E_EXCEPTION;
    LSTATUS status = ERROR_SUCCESS;
    if (!undo_) {
        const auto bytes = static_cast<DWORD>((std::wcslen(words_.Word()) + 1) * sizeof(wchar_t));
        status = RegSetValueExW(key, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(words_.Word()), bytes);
    }
    words_.Advance();
    return Failed(status);
}

HRESULT Interpreter::Remove(HKEY parent, const wchar_t* name) {
    const LSTATUS status = RegDeleteTreeW(parent, name);
    return status == ERROR_FILE_NOT_FOUND ? S_OK : Failed(status);
}

HRESULT Interpreter::Key(HKEY parent, int depth) {
    const bool force = words_.Take(L"ForceRemove"), stays = words_.Take(L"NoRemove");
    wchar_t name[MAX_PATH] = {};
    std::wcsncpy(name, words_.Word(), std::size(name) - 1);
    words_.Advance();
    OpenKey key;
    HRESULT result = S_OK;
    if (!undo_) {
        if (force) result = Remove(parent, name);
        if (SUCCEEDED(result))
            result = Failed(RegCreateKeyExW(parent, name, 0, nullptr, 0, KEY_READ | KEY_WRITE, nullptr,
                                            key.Out(), nullptr));
        if (FAILED(result)) return result;
    } else if (stays && parent != nullptr) {
        RegOpenKeyExW(parent, name, 0, KEY_READ | KEY_WRITE, key.Out());
    } else if (parent != nullptr) {
        result = Remove(parent, name);
        if (FAILED(result) && SUCCEEDED(failure_)) failure_ = result;
    }
    if (words_.Take(L"=")) {
        result = Value(key.get(), nullptr);
        if (FAILED(result)) return result;
    }
    return words_.Take(L"{") ? Keys(key.get(), depth + 1) : S_OK;
}

HRESULT Interpret(int resource, const Replacement* replacements, size_t count, bool undo) {
    Script script;
    if (!Find(resource, &script)) return Failed(ERROR_RESOURCE_NAME_NOT_FOUND);
    return Interpreter(script, replacements, count, undo).Run();
}

} // namespace

HRESULT RunScript(int resource, const Replacement* replacements, size_t count) {
    return Interpret(resource, replacements, count, false);
}

HRESULT UndoScript(int resource, const Replacement* replacements, size_t count) {
    return Interpret(resource, replacements, count, true);
}

} // namespace zkr::automation
