#include "module/network/pattern_curve_store.h"

#include "module/host/translate.h"
#include "module/network/element_data.h"
#include "module/network/schema.h"

namespace vessora {

using schema::Field;

namespace {

constexpr int kColor = 2;

// The stored form of each kind of record.
struct Patterns {
  using Record = EpaPattern;
  static constexpr const char16_t* application = app::kPattern;
  static constexpr const schema::List& list = schema::kPattern;

  static void readHead(const Chain&, EpaPattern&) {}
  static void readValue(const Chain& data, EpaPattern& pattern) {
    pattern.multipliers.push_back(XDataReader(data).real());
  }
  static Chain head(const EpaPattern& pattern, std::u16string_view network) {
    return Chain(acutBuildList(1001, application, 1000, pattern.id, 1000, network, RTNONE));
  }
  static const std::vector<double>& values(const EpaPattern& pattern) {
    return pattern.multipliers;
  }
  static resbuf* value(double multiplier) {
    return acutBuildList(1001, application, 1040, multiplier, RTNONE);
  }
};

struct Curves {
  using Record = EpaCurve;
  static constexpr const char16_t* application = app::kCurve;
  static constexpr const schema::List& list = schema::kCurve;

  static void readHead(const Chain& data, EpaCurve& curve) {
    curve.kind = textAt(data, list, Field::kind);
  }
  static void readValue(const Chain& data, EpaCurve& curve) {
    XDataReader reader(data);
    const double x = reader.real();
    curve.points.push_back({x, reader.real()});
  }
  static Chain head(const EpaCurve& curve, std::u16string_view network) {
    return Chain(
        acutBuildList(1001, application, 1000, curve.id, 1000, curve.kind, 1000, network, RTNONE));
  }
  static const std::vector<EpaCurvePoint>& values(const EpaCurve& curve) { return curve.points; }
  static resbuf* value(const EpaCurvePoint& point) {
    return acutBuildList(1001, application, 1040, point.x, 1040, point.y, RTNONE);
  }
};

// Calls visit(polyline, data) for each polyline of the kind that has data.
template <class Kind, class Visit>
void forEachPolyline(AcDb::OpenMode mode, Visit visit) {
  const SelectionSet set(u"_X", reservedFilter(Kind::application));
  for (const AcDbObjectId id : set) {
    const Opened<AcDb3dPolyline> polyline(id, mode);
    if (!polyline) continue;
    const Chain data(polyline->xData(Kind::application));
    if (data) visit(*polyline, data);
  }
}

template <class Kind>
std::u16string_view idOf(const Chain& data) {
  return textAt(data, Kind::list, Field::id);
}

template <class Kind>
void readValues(const AcDb3dPolyline& polyline, typename Kind::Record& record) {
  const std::unique_ptr<AcDbObjectIterator> at(polyline.vertexIterator());
  for (; !at->done(); at->step()) {
    const Opened<AcDb3dPolylineVertex> vertex(at->objectId());
    if (!vertex) continue;
    if (const Chain data(vertex->xData(Kind::application)); data) Kind::readValue(data, record);
  }
}

template <class Kind>
void load(std::vector<typename Kind::Record>& records, std::u16string_view network) {
  forEachPolyline<Kind>(AcDb::kForRead, [&](const AcDb3dPolyline& polyline, const Chain& data) {
    const int place = schema::placeOf(Kind::list, Field::network);
    if (!data.item(place) || data.text(place) != network) return;
    typename Kind::Record& record = records.emplace_back();
    record.id = idOf<Kind>(data);
    Kind::readHead(data, record);
    readValues<Kind>(polyline, record);
  });
}

template <class Kind>
void write(const typename Kind::Record& record, std::u16string_view network) {
  const auto& values = Kind::values(record);
  if (values.empty()) return;
  // Not every way here has registered the application; without, the host takes no data of it.
  acdbRegApp(Kind::application);
  const AcGePoint3dArray points(values.size(), AcGePoint3d(1, 1, 1));
  std::vector<Chain> chains;
  ResbufArray vertexData;
  for (const auto& value : values) {
    vertexData.push_back(chains.emplace_back(Kind::value(value)).get());
  }
  const Chain head = Kind::head(record, network);
  HNGeometry::Create3Dpoly(points, kColor, layer::kReserved, 0, head.get(), nullptr, nullptr,
                           &vertexData);
}

template <class Kind>
void replace(const typename Kind::Record& record, std::u16string_view oldId,
             std::u16string_view network) {
  forEachPolyline<Kind>(AcDb::kForWrite, [&](AcDb3dPolyline& polyline, const Chain& data) {
    const bool elsewhere = textAt(data, Kind::list, Field::network) != network;
    if (idOf<Kind>(data) == oldId && !(inpIsFull() && elsewhere)) polyline.erase();
  });
  write<Kind>(record, network);
}

struct AxisLabels {
  const char16_t *kind, *x, *y;
};
constexpr AxisLabels kLabels[] = {
    {u"VOLUME", u"Altezza", u"Volume"},
    {u"PUMP", u"Portata", u"Carico"},
    {u"EFFICIENCY", u"Portata", u"Efficienza"},
    {u"HEADLOSS", u"Portata", u"Perdita"},
};

const AxisLabels* labelsOf(std::u16string_view kind) {
  for (const AxisLabels& labels : kLabels) {
    if (kind == labels.kind) return &labels;
  }
  return nullptr;
}

}  // namespace

void LoadPatterns(std::vector<EpaPattern>& patterns, std::u16string_view network) {
  load<Patterns>(patterns, network);
}
void LoadCurves(std::vector<EpaCurve>& curves, std::u16string_view network) {
  load<Curves>(curves, network);
}

void AddPattern(const EpaPattern& pattern, std::u16string_view network) {
  makeReservedLayer();
  write<Patterns>(pattern, network);
}
void AddCurve(const EpaCurve& curve, std::u16string_view network) {
  makeReservedLayer();
  write<Curves>(curve, network);
}

void ReplacePattern(const EpaPattern& pattern, std::u16string_view oldId,
                    std::u16string_view network) {
  replace<Patterns>(pattern, oldId, network);
}
void ReplaceCurve(const EpaCurve& curve, std::u16string_view oldId, std::u16string_view network) {
  replace<Curves>(curve, oldId, network);
}

namespace {

// In full: of the network and the id, and nothing besides.
template <class Kind>
void eraseOwn(std::u16string_view id, std::u16string_view network) {
  forEachPolyline<Kind>(AcDb::kForWrite, [&](AcDb3dPolyline& polyline, const Chain& data) {
    if (idOf<Kind>(data) == id && textAt(data, Kind::list, Field::network) == network) {
      polyline.erase();
    }
  });
}

}  // namespace

void DeletePattern(std::u16string_view id, std::u16string_view network) {
  if (inpIsFull()) return eraseOwn<Patterns>(id, network);
  forEachPolyline<Patterns>(AcDb::kForWrite, [&](AcDb3dPolyline& polyline, const Chain& data) {
    const std::u16string_view owner = textAt(data, schema::kPattern, Field::network);
    if (owner.empty() || (idOf<Patterns>(data) == id && owner == network)) polyline.erase();
  });
}

void DeleteCurve(std::u16string_view id, std::u16string_view network) {
  if (inpIsFull()) return eraseOwn<Curves>(id, network);
  forEachPolyline<Curves>(AcDb::kForWrite, [&](AcDb3dPolyline& polyline, const Chain& data) {
    // The kind and not the network is compared: drawings are used to curves that stay.
    const int place = schema::placeOf(schema::kCurve, Field::kind);
    if (data.item(place) && idOf<Curves>(data) == id && data.text(place) == network) {
      polyline.erase();
    }
  });
}

std::u16string CurveXLabel(std::u16string_view kind) {
  const AxisLabels* labels = labelsOf(kind);
  return labels ? TraduciTesto(labels->x) : u"X";
}
std::u16string CurveYLabel(std::u16string_view kind) {
  const AxisLabels* labels = labelsOf(kind);
  return labels ? TraduciTesto(labels->y) : u"Y";
}

}  // namespace vessora
