/*
 * The library as a component of Windows: the raster object and its factory are created by name, and the functions here are
 * what the system calls for that, and what companions of an object call, which share its list. Elsewhere the family does
 * not exist; raster_object.h has the object itself.
 *
 * Companions hand an object in as its IUnknown. A null pointer is E_POINTER and an object of another kind E_NOINTERFACE,
 * with nothing done; failures of the object are 0x800A0000 | (20000 - code), as its members give them.
 */
#ifndef ZKR13N_RASTER_COMPONENT_H
#define ZKR13N_RASTER_COMPONENT_H

#include "lists.h"

#ifdef _WIN32

struct IUnknown;

Z_BEGIN_DECLS

/* Gives the class object of a class; CLASS_E_CLASSNOTAVAILABLE for one that is not made here. */
Z_API HRESULT Z_CALL DllGetClassObject(REFCLSID classId, REFIID iid, LPVOID* object);

/* S_OK where no object of the library is in use, else S_FALSE. */
Z_API HRESULT Z_CALL DllCanUnloadNow(void);

/* Enters the classes and the type library into the registry; stops at the first failure and returns it. */
Z_API HRESULT Z_CALL DllRegisterServer(void);

/* Takes all that out again; what is not there is no failure. Goes through to the end and returns the first failure. */
Z_API HRESULT Z_CALL DllUnregisterServer(void);

/*
 * What an object calls with each change of its bitmap.
 *
 * change           CHANGE_..., or CHANGE_UPDATELIST when the record is stored in the list
 * first, second    two words of the change; for CHANGE_UPDATELIST the record's address and its index
 */
typedef void(Z_CALL* RasterCallback)(int32_t change, LONG_PTR first, LONG_PTR second);

/*
 * Attaches a companion: the object frees its own list and works on the companion's, which it never frees.
 *
 * object      in
 * callback    in: -13 for null, and for an object that has a companion already
 * list        in: may be null
 */
Z_API HRESULT Z_CALL Advise(struct IUnknown* object, RasterCallback callback, BitmapList list);

/*
 * Detaches the companion; the object gets an empty list of its own.
 *
 * object    in
 * mode      in: 0, 1 or 2; 1 also leaves RefBitmapList true. Without a companion 2 is S_OK, others -13.
 */
Z_API HRESULT Z_CALL UnAdvise(struct IUnknown* object, int32_t mode);

/* As the object's NotifyChange. */
Z_API HRESULT Z_CALL AdviseChanged(struct IUnknown* object, int32_t notification, int32_t flags,
                                   int32_t reserved1, int32_t reserved2);

/* As the object's SetChangeInfo, without its result. */
Z_API HRESULT Z_CALL SetChangeInfo(struct IUnknown* object, int32_t type, void* info);

/* Makes another list the object's, as its BitmapList does, without freeing the old one. */
Z_API HRESULT Z_CALL ListChanged(struct IUnknown* object, BitmapList list);

/* Reads the working record from the list again. */
Z_API HRESULT Z_CALL UpdateList(struct IUnknown* object);

Z_END_DECLS

#endif

#endif
