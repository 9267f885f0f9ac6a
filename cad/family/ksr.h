// KsrFactory, KsrInterface: the family's own abstraction of a host. Rows of codes and values,
// selection by such rows, and commands posted for later.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "cad/api/editor.h"

struct KsrDato {
  int code = 0;
  std::u16string text;
  double real = 0;
  int integer = 0;
};

class CAD_API KsrDatoArray {
 public:
  void Add(int code, std::u16string_view text);
  void Add(int code, double value);
  int GetCount() const { return static_cast<int>(rows_.size()); }
  const KsrDato& operator[](int i) const { return rows_[static_cast<std::size_t>(i)]; }
  KsrDato& operator[](int i) { return rows_[static_cast<std::size_t>(i)]; }
  void RemoveAll() { rows_.clear(); }

 private:
  friend class KsrEntityUtils;
  std::vector<KsrDato> rows_;
};

// An entity in that abstraction.
struct KsrEntityID {
  AcDbObjectId id;
};

class CAD_API KsrEntityUtils {
 public:
  // The entities that pass all rows of the filter, at most `limit`, in drawing order. RTNORM when
  // there is any. Mode u"_X" is the whole drawing.
  int SsGet(const char16_t* mode, const KsrDatoArray& filter, std::vector<KsrEntityID>& result,
            int limit) const;
  // The extended data of one application, the application itself at index 0; empty when none.
  void GetXData(const KsrEntityID& entity, std::u16string_view application,
                KsrDatoArray& rows) const;
};

class CAD_API KsrGeneralUtils {
 public:
  // Posts a command line for later.
  int SendCommand(std::u16string_view line) const;
  // While on, commands started by other modules of the family run without asking what they know.
  void SetExternalMode(bool on);
  bool ExternalMode() const;
};

class CAD_API KsrFactory {
 public:
  static KsrEntityUtils* GetEntityUtils();
  static KsrGeneralUtils* GetGeneralUtils();
};

class Ksr_GePoint2d {
 public:
  Ksr_GePoint2d() = default;
  Ksr_GePoint2d(double px, double py) : x(px), y(py) {}
  double x = 0, y = 0;
};
