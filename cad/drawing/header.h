// The variables in a drawing's header: the tags behind "9 $NAME".
#pragma once

#include <string>
#include <string_view>

#include "cad/drawing/structure.h"

namespace cad {

// A variable that a header may have, and what stands behind its name.
struct HeaderVariable {
  std::string_view name;  // "$CLAYER"
  int code;               // group code of its (first) value
  int since;              // first version that has it
};

class CAD_API Header {
 public:
  Header(Records& records, Structure& structure, Writer& writer)
      : records_(records), structure_(structure), writer_(writer) {}

  // The tags of the header and where the values of a variable stand in them; false when the header
  // has no such variable.
  bool variable(std::string_view name, TagList& tags, TagRange& range) const;
  std::u16string text(std::string_view name, std::u16string_view fallback = u"") const;
  // Sets the first value of a variable. One that the header lacks is added when it is known and the
  // drawing's version has it; false when it is not, and for a text that is no value of its kind.
  bool setText(std::string_view name, std::u16string_view text);
  // What is known of a variable, null for an unknown name.
  static const HeaderVariable* known(std::string_view name);
  // The layer that new entities lie on, and the axes of the user's coordinate system in the world.
  const std::u16string& currentLayer() const { return values().layer; }
  const AcGeMatrix3d& userSystem() const { return values().user; }

 private:
  // What is asked for with every new entity, kept while the header's text is this one.
  struct Values {
    TextKey of;
    std::u16string layer = u"0";
    AcGeMatrix3d user;
  };
  const Values& values() const;

  Records& records_;
  Structure& structure_;
  Writer& writer_;
  mutable Values values_;
  mutable std::uint32_t record_ = 0;  // the section's record, which never moves once it is there
};

}  // namespace cad
