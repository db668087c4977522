// The type library in the module's resources.
#pragma once

#include <ole2.h>

namespace zkr::automation {

// The library itself, with a reference for the caller.
HRESULT LoadOwnLibrary(ITypeLib** library);
// The description of an interface or class of it, kept for the process; it stays the keeper's.
HRESULT OwnTypeInfo(REFGUID guid, ITypeInfo** info);
// Forgets what is kept.
void DropTypeInfos();

} // namespace zkr::automation
