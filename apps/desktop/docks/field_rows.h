// The rows of elements' fields, for one element or what several have in common.
#pragma once

#include <optional>
#include <vector>

#include "apps/desktop/docks/property_sheet.h"
#include "cad/editor/session.h"

namespace desktop {

// What the value of several things comes to.
struct Common {
  QString value;
  bool several = false, any = false;
  void add(const QString& one) {
    if (any && one != value) several = true;
    if (!any) value = one;
    any = true;
  }
};

// "Quota [m]"
QString asLabel(const cad::Session::DataName& name);
// What a field of a list of extended data is called on the entities of a layer.
cad::Session::DataName nameOf(const schema::List& list, const std::u16string& layer,
                              schema::Field field);

class FieldRows {
 public:
  // Choices are those of the network; where the elements are of several there are none.
  FieldRows(const ShownNetwork& network, bool oneNetwork);

  void add(const vessora::DrawnElement& element);
  // `one`: of a single element, which has a name.
  std::vector<Property> rows(bool one) const;

 private:
  struct Row {
    FieldRule rule;
    QString label;
    Common common = {};
    bool shared = true;
  };

  void begin(const vessora::DrawnElement& element);
  // With its unit; empty for what the element does not have.
  QString labelOf(const vessora::DrawnElement& element, const FieldRule& rule) const;
  // How a row can be edited.
  void decide(Property& p) const;
  void decideSetting(Property& p) const;
  void choosePattern(Property& p) const;
  void chooseCurve(Property& p, std::u16string_view kind) const;
  void chooseMaterial(Property& p) const;

  std::u16string network_, formula_;
  bool oneNetwork_, oneKind_ = true;
  vessora::Jobs& jobs_;
  std::optional<vessora::DrawnElement> first_;
  std::vector<Row> fields_;
};

}  // namespace desktop
