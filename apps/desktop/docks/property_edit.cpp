// Edits of what is shown of elements: examined first, then made by the module's jobs.
#include <algorithm>

#include "apps/desktop/docks/property_sheet.h"
#include "apps/desktop/text.h"
#include "apps/program/words.h"
#include "cad/api/entities.h"
#include "cad/api/owners.h"
#include "platform/text.h"

namespace desktop {

using schema::Field;
using vessora::DrawnElement;
using vessora::ListedElement;

namespace {

QString faultOfName(const Networks& networks, ElementPlace place, const std::u16string& name) {
  if (name.empty()) return words(u"Il nome non può mancare.");
  const ListedElement& own = networks.at(place);
  const auto& elements = networks.all()[place.network].elements;
  const bool taken = std::any_of(elements.begin(), elements.end(), [&](const ListedElement& e) {
    return e.id != own.id && e.name == name && vessora::isNode(e.kind) == vessora::isNode(own.kind);
  });
  if (taken) return words(u"Il nome %1 c'è già.").arg(qt(name));
  const bool unreadable = std::any_of(
      name.begin(), name.end(), [](char16_t c) { return c <= u' ' || c == u';' || c == u'"'; });
  if (unreadable) return words(u"Un nome non ha spazi, virgolette né punti e virgola.");
  return {};
}

QString faultOfNumber(const FieldRule& rule, const QString& typed, std::u16string& text) {
  if (typed.trimmed().isEmpty() && rule.entry == Entry::optional) {
    text.clear();
    return {};
  }
  const auto number = numberOf(typed);
  if (!number) return words(u"Non è un numero: %1").arg(typed);
  text = *number;
  return faultOf(rule, text);
}

// A material brings its roughness; a head curve takes the place of a power.
bool change(DrawnElement& element, const PropertyEdit& edit, const std::u16string& roughness,
            vessora::FieldSet& changed) {
  changed = {edit.field};
  if (!setText(element, edit.field, edit.text)) return false;
  if (edit.field == Field::type && !roughness.empty() &&
      std::holds_alternative<vessora::EpaPipe>(element.record)) {
    setText(element, Field::roughness, roughness);
    changed.add(Field::roughness);
  }
  if (edit.field == Field::headCurve && !edit.text.empty()) {
    setText(element, Field::power, {});
    changed.add(Field::power);
  }
  return true;
}

// In millimetres, as networks with a formula that takes a material have it; empty for no material.
std::u16string roughnessOf(vessora::Jobs& jobs, std::u16string_view material) {
  for (const auto& row : jobs.readMaterialTable().rows) {
    if (row.name == material && row.roughness > 0)
      return wide(QString::number(row.roughness * 1000, 'g', 15));
  }
  return {};
}

vessora::ChangeResult move(vessora::Jobs& jobs, const std::u16string& network, AcDbObjectId id,
                           const PropertyEdit& edit) {
  AcGePoint3d at;
  {
    const cad::Opened<AcDbBlockReference> block(id);
    if (!block) return {};
    at = block->position();
  }
  const double value = platform::wtof(edit.text);
  (edit.target == Property::Target::x ? at.x : at.y) = value;
  return jobs.moveNode(network, id, at.x, at.y);
}

}  // namespace

EditVerdict examine(const Networks& networks, const PropertySheet& sheet, const Property& property,
                    const QString& typed) {
  EditVerdict verdict{{}, {property.target, property.rule.field, wide(typed.trimmed())}};
  std::u16string& text = verdict.edit.text;
  if (sheet.elements.empty() || property.kind == Property::Kind::fixed) {
    verdict.refused = words(u"Non si può modificare.");
  } else if (property.rule.entry == Entry::name) {
    verdict.refused = faultOfName(networks, sheet.elements.front(), text);
  } else if (property.number) {
    verdict.refused = faultOfNumber(property.rule, typed, text);
  } else if (property.kind == Property::Kind::choice && !property.choices.contains(qt(text))) {
    verdict.refused = words(u"Non è tra le scelte: %1").arg(typed);
  }
  return verdict;
}

bool apply(const std::vector<EditedElement>& elements, const PropertyEdit& edit,
           QStringList& lines) {
  vessora::Jobs* const jobs = vessora::Jobs::find();
  if (!jobs) return false;
  std::u16string roughness;
  if (edit.field == Field::type) roughness = roughnessOf(*jobs, edit.text);
  for (const EditedElement& edited : elements) {
    vessora::ChangeResult result;
    if (edit.target != Property::Target::field) {
      result = move(*jobs, edited.network, edited.id, edit);
    } else if (auto element = jobs->readElement(edited.network, edited.id)) {
      vessora::FieldSet changed;
      if (textOf(*element, edit.field) == edit.text) continue;
      if (!change(*element, edit, roughness, changed)) {
        lines.push_back(words(u"%1: il testo è troppo lungo").arg(qt(edited.name)));
        return false;
      }
      result = jobs->modifyElement(edited.network, edited.id, *element, changed);
    }
    if (!result.done()) {
      lines.push_back(words(u"%1 non si può modificare").arg(qt(edited.name)));
      return false;
    }
    for (const auto* notices : {&result.notices, &result.warnings}) {
      for (const std::string& line : program::described(*notices)) lines.push_back(qt(line));
    }
  }
  return true;
}

}  // namespace desktop
