// What is shown of the chosen things: the fields of the elements that they belong to, their
// results, and what any entity has. Of several, what they have in common.
#pragma once

#include <QString>
#include <QStringList>
#include <vector>

#include "apps/desktop/docks/element_fields.h"
#include "apps/desktop/docks/networks.h"

namespace desktop {

struct Property {
  enum class Kind { heading, fixed, text, choice };
  // What an edit changes: a field of the elements, or the place of a node.
  enum class Target { field, x, y };

  Kind kind = Kind::fixed;
  QString label;         // with the unit
  QString value;         // empty when they differ
  bool several = false;  // they differ
  bool number = false;
  QStringList choices;
  QString tip;
  Target target = Target::field;
  FieldRule rule = {schema::Field::none, Entry::fixed};

  friend bool operator==(const Property& a, const Property& b) {
    return a.kind == b.kind && a.label == b.label && a.value == b.value && a.several == b.several &&
           a.choices == b.choices && a.tip == b.tip;
  }
};

struct PropertySheet {
  QString title;  // what is chosen; empty for nothing
  std::vector<Property> rows;
  std::vector<ElementPlace> elements;
};

PropertySheet sheetOf(const cad::Drawing& drawing, const Networks& networks,
                      const std::vector<std::uint32_t>& records);

// An edit that may be made, or why not.
struct PropertyEdit {
  Property::Target target = Property::Target::field;
  schema::Field field = schema::Field::none;
  std::u16string text;
};
struct EditVerdict {
  QString refused;  // empty when it may
  PropertyEdit edit;
};
EditVerdict examine(const Networks& networks, const PropertySheet& sheet, const Property& property,
                    const QString& typed);

// An element to be changed, whatever happens to the lists meanwhile.
struct EditedElement {
  std::u16string network, name;
  AcDbObjectId id;
};
// Makes the edit on elements within the drawing's running command. What jobs have to say of it is
// added to `lines`; false, and what has been changed is to be taken back, when an element could not
// be changed.
bool apply(const std::vector<EditedElement>& elements, const PropertyEdit& edit,
           QStringList& lines);

}  // namespace desktop
