// A small module: draws a mark, offers a service, talks with the user.
#include "second.h"

#include "cad/api/editor.h"
#include "cad/api/owners.h"
#include "cad/family/hn_geometry.h"

ACRX_DEFINE(SecondService, AcRxObject)

namespace {

class Service : public SecondService {
 public:
  int marks() const override { return marks_; }
  void setCallback(void (*callback)()) override { callback_ = callback; }

  int marks_ = 0;
  void (*callback_)() = nullptr;
};
Service service, forgotten;

AcEdCommandStack* stack() {
  return AcRxObject::cast<AcEdCommandStack>(acrxSysRegistry()->at(u"ACAD_REGISTERED_COMMANDS"));
}

// MARK: a point and a line on a layer of its own, where the user says.
void mark() {
  AcGePoint3d at;
  if (acedGetPoint(nullptr, u"\nPunto: ", at) != RTNORM) return;
  HNGeometry::createNewLayer(u"SEGNI");
  if (HNGeometry::addPOINT(at, u"SEGNI", 3, nullptr).isNull()) return;
  const AcDbObjectId id =
      HNGeometry::createLine(at, {at.x + 1, at.y, at.z}, u"SEGNI", u"ByLayer", 1);
  const cad::Opened<AcDbLine> line(id);
  ++service.marks_;
  if (line)
    acutPrintf(u"\nsegno %d in %.1f su %s", service.marks_, line->endPoint().x, line->layer());
}

void callBack() {
  if (service.callback_) service.callback_();
}

// Forgets a selection set and an object, as no command should.
void leak() {
  ads_name set;
  acedSSGet(u"_X", nullptr, nullptr, nullptr, set);
  AcDbObjectId id;
  ads_name first;
  AcDbEntity* entity = nullptr;
  if (acedSSName(set, 0, first) == RTNORM && acdbGetObjectId(id, first) == RTNORM) {
    acdbOpenObject(entity, id, AcDb::kForWrite);
  }
}

AcRx::AppRetCode start([[maybe_unused]] void* packet) {
#ifndef STAYS
  auto* linker = AcRxObject::cast<AcRxDynamicLinker>(acrxSysRegistry()->at(u"DynamicLinker"));
  if (linker) linker->unlockApplication(packet);
#endif
  stack()->addCommand(u"SECONDO", u"MARK", u"SEGNO", 0, mark);
  stack()->addCommand(u"SECONDO", u"CALLBACK", u"CALLBACK", 0, callBack);
  stack()->addCommand(u"SECONDO", u"LEAK", u"LEAK", 0, leak);
  acrxSysRegistry()->atPut(u"SecondService", &service);
  acrxSysRegistry()->atPut(u"SecondForgotten", &forgotten);
#ifdef FAILS_TO_START
  return AcRx::kRetError;
#endif
  return AcRx::kRetOK;
}

}  // namespace

extern "C" __attribute__((visibility("default"))) AcRx::AppRetCode acrxEntryPoint(
    AcRx::AppMsgCode message, void* packet) {
  if (message == AcRx::kInitAppMsg) return start(packet);
  // Leaves one service and its commands behind: its host must not.
  if (message == AcRx::kUnloadAppMsg || message == AcRx::kQuitMsg) {
    acrxSysRegistry()->remove(u"SecondService");
  }
  return AcRx::kRetOK;
}
