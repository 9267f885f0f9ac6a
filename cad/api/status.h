// Status codes that operations of the drawing database return.
#pragma once

#include "cad/api/export.h"

namespace Acad {

enum ErrorStatus {
  eOk = 0,
  eNotOpenForRead,
  eNotOpenForWrite,
  eWasOpenForRead,
  eWasOpenForWrite,
  eWasErased,
  eNullObjectId,
  eNullObjectPointer,
  eNotInDatabase,
  eAlreadyInDb,
  eNoDatabase,
  eKeyNotFound,
  eDuplicateKey,
  eDuplicateRecordName,
  eInvalidInput,
  eInvalidXdata,
  eRegappIdNotFound,
  eXdataSizeExceeded,
  eWrongObjectType,
  eNotThatKindOfClass,
  eInvalidExtents,
  eInvalidIndex,
  eFileNotFound,
  eFileAccessErr,
  eDwgNeedsRecovery,
  eNotImplementedYet,
  eSelfReference,
  eInvalidDwgVersion,       // this version of drawing cannot hold the object
  eCannotBeErasedByCaller,  // the drawing needs it, or something in it does
};

}  // namespace Acad

// The name of the status ("eOk", ...), as shown to users; never null.
CAD_API const char16_t* acadErrorStatusText(Acad::ErrorStatus status);
