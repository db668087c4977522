// Scripts of registry keys, in the resources of the module:
//
//   key      = { modifier } name [ "=" value ] [ "{" { key | "val" name "=" value } "}" ]
//   value    = "s" 'text'
//   modifier = "ForceRemove", the key goes with all that is in it before it is made anew, or
//              "NoRemove", the key stays when the others are removed
//
// The outermost key is HKCR. Words between percent signs are replaced.
#pragma once

#include <ole2.h>

namespace zkr::automation {

struct Replacement {
    const wchar_t* Word; // without the percent signs
    const wchar_t* Text;
};

// Make all that a script tells; or remove it, where what is not there is no failure and the rest goes on after one.
HRESULT RunScript(int resource, const Replacement* replacements, size_t count);
HRESULT UndoScript(int resource, const Replacement* replacements, size_t count);

} // namespace zkr::automation
