#include "cad/api/resbuf.h"

#include <cmath>
#include <cstring>

#include "cad/api/rxobject.h"
#include "cad/api/status.h"

namespace {

int g_live = 0;
resbuf* g_free = nullptr;  // released nodes, for the next ones

char16_t* copyText(std::u16string_view text) {
  auto* copy = new char16_t[text.size() + 1];
  if (!text.empty()) std::memcpy(copy, text.data(), text.size() * sizeof(char16_t));
  copy[text.size()] = 0;
  return copy;
}

resbuf* takeNode(int type) {
  resbuf* node = g_free;
  if (node) {
    g_free = node->rbnext;
    *node = resbuf();
  } else {
    node = new resbuf;
  }
  node->restype = static_cast<std::int16_t>(type);
  ++g_live;
  return node;
}

bool within(int v, int low, int high) { return v >= low && v <= high; }

// Extended data, which chains hold most.
RbKind kindOfExtended(int type) {
  if (type <= 1005) return RbKind::text;
  if (type <= 1009) return RbKind::none;
  if (type <= 1013) return RbKind::point;
  if (type <= 1059) return RbKind::real;
  return type <= 1070 ? RbKind::int16 : RbKind::int32;
}

}  // namespace

RbKind acutKindOf(int type) {
  if (within(type, 1000, 1071)) return kindOfExtended(type);
  switch (type) {
    case RTREAL:
      return RbKind::real;
    case RTPOINT:
      return RbKind::point;
    case RTSHORT:
      return RbKind::int16;
    case RTLONG:
      return RbKind::int32;
    case RTSTR:
    case RTDXF0:
    case RTENAME:
    case RTPICKS:
      return RbKind::text;
    case -4:
      return RbKind::text;
    default:
      break;
  }
  if (within(type, 10, 18) || within(type, 110, 112) || type == 210) {
    return RbKind::point;
  }
  if (within(type, 0, 9) || within(type, 100, 102) || within(type, 300, 369) ||
      within(type, 390, 399) || within(type, 410, 419) || within(type, 430, 439) ||
      within(type, 470, 481) || type == 105 || type == 999) {
    return RbKind::text;
  }
  if (within(type, 19, 59) || within(type, 113, 149) || within(type, 211, 239) ||
      within(type, 460, 469)) {
    return RbKind::real;
  }
  if (within(type, 60, 79) || within(type, 170, 179) || within(type, 270, 299) ||
      within(type, 370, 389) || within(type, 400, 409)) {
    return RbKind::int16;
  }
  if (within(type, 90, 99) || within(type, 160, 169) || within(type, 420, 429) ||
      within(type, 440, 459)) {
    return RbKind::int32;
  }
  return RbKind::none;
}

resbuf* acutNewRb(int type) {
  const RbKind kind = acutKindOf(type);
  if (kind == RbKind::none) return nullptr;
  resbuf* node = takeNode(type);
  if (kind == RbKind::text) node->resval.rstring = copyText({});
  return node;
}

void acutRelRb(resbuf* chain) {
  while (chain) {
    resbuf* next = chain->rbnext;
    if (acutKindOf(chain->restype) == RbKind::text) delete[] chain->resval.rstring;
    chain->rbnext = g_free;
    g_free = chain;
    --g_live;
    chain = next;
  }
}

void acutSetText(resbuf* node, std::u16string_view text) {
  char16_t* copy = copyText(text);
  delete[] node->resval.rstring;
  node->resval.rstring = copy;
}

int acutLiveNodes() { return g_live; }

namespace acut_detail {

void append(resbuf*& head, resbuf*& tail, int code, const Argument& value) {
  const RbKind kind = acutKindOf(code);
  if (kind == RbKind::none) return;
  resbuf* node = takeNode(code);
  switch (kind) {
    case RbKind::text:
      node->resval.rstring =
          copyText(value.kind == RbKind::text ? value.text : std::u16string_view());
      break;
    case RbKind::real:
      node->resval.rreal = value.kind == RbKind::real    ? value.real
                           : value.kind == RbKind::int16 ? value.integer
                                                         : 0.0;
      break;
    case RbKind::point:
      if (value.kind == RbKind::point) {
        node->resval.rpoint[0] = value.point.x;
        node->resval.rpoint[1] = value.point.y;
        node->resval.rpoint[2] = value.point.z;
      }
      break;
    case RbKind::int16:
      node->resval.rint =
          value.kind == RbKind::int16 ? static_cast<std::int16_t>(value.integer) : 0;
      break;
    case RbKind::int32:
      node->resval.rlong = value.kind == RbKind::int16 ? value.integer : 0;
      break;
    case RbKind::none:
      break;
  }
  if (tail) {
    tail->rbnext = node;
  } else {
    head = node;
  }
  tail = node;
}

}  // namespace acut_detail

const AcRxClass* AcRxObject::desc() {
  static const AcRxClass description(u"AcRxObject", nullptr);
  return &description;
}
const AcRxClass* AcRxObject::isA() const { return desc(); }

const char16_t* acadErrorStatusText(Acad::ErrorStatus status) {
  switch (status) {
#define STATUS(name) \
  case Acad::name:   \
    return u"" #name
    STATUS(eOk);
    STATUS(eNotOpenForRead);
    STATUS(eNotOpenForWrite);
    STATUS(eWasOpenForRead);
    STATUS(eWasOpenForWrite);
    STATUS(eWasErased);
    STATUS(eNullObjectId);
    STATUS(eNullObjectPointer);
    STATUS(eNotInDatabase);
    STATUS(eAlreadyInDb);
    STATUS(eNoDatabase);
    STATUS(eKeyNotFound);
    STATUS(eDuplicateKey);
    STATUS(eDuplicateRecordName);
    STATUS(eInvalidInput);
    STATUS(eInvalidXdata);
    STATUS(eRegappIdNotFound);
    STATUS(eXdataSizeExceeded);
    STATUS(eWrongObjectType);
    STATUS(eNotThatKindOfClass);
    STATUS(eInvalidExtents);
    STATUS(eInvalidIndex);
    STATUS(eFileNotFound);
    STATUS(eFileAccessErr);
    STATUS(eDwgNeedsRecovery);
    STATUS(eNotImplementedYet);
    STATUS(eSelfReference);
    STATUS(eInvalidDwgVersion);
    STATUS(eCannotBeErasedByCaller);
#undef STATUS
  }
  return u"eInvalidInput";
}
