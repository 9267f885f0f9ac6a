#include "cad/drawing/attribute_form.h"

#include <array>
#include <cmath>

#include "cad/drawing/drawing.h"
#include "cad/drawing/fields.h"

namespace cad {
namespace {

// How a reference turns and scales what is in its block.
struct Manner {
  double scale = 1, turn = 0;
  friend bool operator==(const Manner&, const Manner&) = default;
};

// An attribute of a definition in references of one manner, but for its points.
struct Form {
  struct Point {
    int at;             // the first of its three tags
    AcGePoint3d place;  // in the block
  };
  TagList tags;
  std::vector<Point> points;
};

// A form and which text of which definition it was made from.
struct KnownForm {
  std::uint32_t drawing = 0, record = 0;
  TextKey text;
  Manner manner;
  Form form;
};

void takeCommon(const TagList& from, TagList& made) {
  const TagRange common = from.subclass("AcDbEntity");
  for (int i = common.begin; i < common.end; ++i) {
    switch (from[i].code) {
      case 8:
      case 6:
      case 62:
      case 48:
      case 60:
      case 370:
      case 420:
        made.insertCopy(made.size(), from, i);
        break;
      default:
        break;
    }
  }
}

// In drawings without markers one stretch holds everything: what is no part of the text there.
bool isOwnOfDefinition(int code) {
  switch (code) {
    case 2:
    case 3:
    case 5:
    case 6:
    case 8:
    case 62:
    case 70:
    case 73:
    case 74:
      return true;
    default:
      return false;
  }
}

void takeText(const TagList& from, const Manner& manner, Form& form) {
  const bool old = !from.format().hasHandlesAndMarkers();
  const TagRange text = from.subclass("AcDbText");
  TagList& t = form.tags;
  bool turned = false;
  for (int i = text.begin; i < text.end; ++i) {
    const int code = from[i].code;
    if (code == 10 || code == 11) {
      form.points.push_back({t.size(), from.point(i)});
      t.addPoint(code, {});
      while (i + 1 < text.end && (from[i + 1].code == code + 10 || from[i + 1].code == code + 20))
        ++i;
    } else if (code == 40 && manner.scale != 1) {
      t.addReal(40, from.real(i) * manner.scale);
    } else if (code == 50) {
      t.addReal(50, from.real(i) + manner.turn / kDegree);
      turned = true;
    } else if (!old || !isOwnOfDefinition(code)) {
      t.insertCopy(t.size(), from, i);
    }
  }
  if (!turned && manner.turn != 0) t.addReal(50, manner.turn / kDegree);
}

void makeForm(const TagList& from, const Manner& manner, Form& form) {
  TagList& t = form.tags;
  form.points.clear();
  t.create(from.format(), "ATTRIB");
  t.addLiteral(100, "AcDbEntity");
  takeCommon(from, t);
  t.addLiteral(100, "AcDbText");
  takeText(from, manner, form);
  // Tag, flags, field length and vertical alignment have the same codes in both.
  t.addLiteral(100, "AcDbAttribute");
  const TagRange own = from.subclass("AcDbAttributeDefinition");
  for (const int code : {2, 70, 73, 74}) {
    const int i = from.find(code, own);
    if (i >= 0) t.insertCopy(t.size(), from, i);
  }
}

// The form, made now when it is none of the latest.
const Form& formOf(const AcDbAttributeDefinition& definition, const Manner& manner) {
  static std::array<KnownForm, 16> known;
  static std::size_t next = 0;
  const ViewState& view = Inside::view(definition);
  const bool stored = view.drawing && !view.modified;
  const std::uint32_t drawing = stored ? view.drawing->number() : 0;
  const TextKey text = stored ? view.drawing->records().textKey(view.record) : TextKey();
  if (stored) {
    for (const KnownForm& one : known) {
      if (one.record == view.record && one.drawing == drawing && one.text == text &&
          one.manner == manner) {
        return one.form;
      }
    }
  }
  KnownForm& fresh = known[next];
  next = (next + 1) % known.size();
  fresh.drawing = drawing;
  fresh.record = stored ? view.record : 0;
  fresh.text = text;
  fresh.manner = manner;
  makeForm(Inside::tags(definition), manner, fresh.form);
  return fresh.form;
}

}  // namespace

void makeAttribute(const AcDbAttributeDefinition& definition, const AcGeMatrix3d& transform,
                   TagList& made) {
  const auto& m = transform.entry;
  const Form& form = formOf(
      definition, {AcGeVector3d(m[0][1], m[1][1], m[2][1]).length(), std::atan2(m[1][0], m[0][0])});
  made.copy(form.tags);
  for (const Form::Point& point : form.points) {
    made.replacePoint(point.at, transform * point.place);
  }
}

}  // namespace cad
