#include "cad/family/ksr.h"

#include <algorithm>

#include "cad/api/owners.h"
#include "cad/drawing/drawing.h"

void KsrDatoArray::Add(int code, std::u16string_view text) {
  KsrDato row;
  row.code = code;
  row.text = text;
  rows_.push_back(std::move(row));
}
void KsrDatoArray::Add(int code, double value) {
  KsrDato row;
  row.code = code;
  row.real = value;
  row.integer = static_cast<int>(value);
  rows_.push_back(std::move(row));
}

int KsrEntityUtils::SsGet(const char16_t* mode, const KsrDatoArray& filter,
                          std::vector<KsrEntityID>& result, int limit) const {
  resbuf *chain = nullptr, **tail = &chain;
  for (int i = 0; i < filter.GetCount(); ++i) {
    resbuf* node = acutNewRb(filter[i].code);
    if (!node) continue;
    if (acutKindOf(node->restype) == RbKind::text) acutSetText(node, filter[i].text);
    if (acutKindOf(node->restype) == RbKind::int16) {
      node->resval.rint = static_cast<std::int16_t>(filter[i].integer);
    }
    *tail = node;
    tail = &node->rbnext;
  }
  ads_name set;
  const int answer = acedSSGet(mode, nullptr, nullptr, chain, set);
  acutRelRb(chain);
  if (answer != RTNORM) return answer;
  std::int32_t count = 0;
  acedSSLength(set, &count);
  for (std::int32_t i = 0; i < std::min(count, limit); ++i) {
    ads_name name;
    KsrEntityID entity;
    acedSSName(set, i, name);
    acdbGetObjectId(entity.id, name);
    result.push_back(entity);
  }
  acedSSFree(set);
  return RTNORM;
}

void KsrEntityUtils::GetXData(const KsrEntityID& entity, std::u16string_view application,
                              KsrDatoArray& rows) const {
  rows.RemoveAll();
  const cad::Opened<AcDbObject> object(entity.id);
  if (!object) return;
  resbuf* chain = object->xData(std::u16string(application).c_str());
  for (const resbuf* n = chain; n; n = n->rbnext) {
    switch (acutKindOf(n->restype)) {
      case RbKind::text:
        rows.Add(n->restype, n->resval.rstring);
        break;
      case RbKind::real:
        rows.Add(n->restype, n->resval.rreal);
        break;
      case RbKind::int16:
        rows.Add(n->restype, static_cast<double>(n->resval.rint));
        break;
      case RbKind::int32:
        rows.Add(n->restype, static_cast<double>(n->resval.rlong));
        break;
      case RbKind::point:
        rows.Add(n->restype, n->resval.rpoint[0]);
        break;
      case RbKind::none:
        break;
    }
  }
  acutRelRb(chain);
}

namespace {
bool g_externalMode = false;
}

int KsrGeneralUtils::SendCommand(std::u16string_view line) const { return acedPostCommand(line); }
void KsrGeneralUtils::SetExternalMode(bool on) { g_externalMode = on; }
bool KsrGeneralUtils::ExternalMode() const { return g_externalMode; }

KsrEntityUtils* KsrFactory::GetEntityUtils() {
  static KsrEntityUtils utils;
  return &utils;
}
KsrGeneralUtils* KsrFactory::GetGeneralUtils() {
  static KsrGeneralUtils utils;
  return &utils;
}
