#include "bench/make_drawing.h"

#include <charconv>
#include <cstdint>
#include <string_view>

#include "cad/api/database.h"
#include "cad/drawing/drawing.h"
#include "platform/files.h"

namespace bench {
namespace {

constexpr std::size_t kHandlesPerElement = 10;

// Appends tags to a text, with the handles of the drawing.
class Writer {
 public:
  Writer(std::string& out, std::uint64_t handle) : out_(out), handle_(handle) {}

  Writer& tag(int code, std::string_view value) {
    char digits[12];
    const auto n = static_cast<std::size_t>(std::to_chars(digits, digits + 12, code).ptr - digits);
    out_.append(n < 3 ? 3 - n : 0, ' ')
        .append(digits, n)
        .append(1, '\n')
        .append(value)
        .append(1, '\n');
    return *this;
  }
  Writer& real(int code, double value) {
    char digits[40];
    const auto r = std::to_chars(digits, digits + 40, value, std::chars_format::fixed, 3);
    return tag(code, std::string_view(digits, static_cast<std::size_t>(r.ptr - digits)));
  }
  Writer& point(int code, double x, double y, double z) {
    return real(code, x).real(code + 10, y).real(code + 20, z);
  }
  Writer& hex(int code, std::uint64_t value) { return tag(code, hexText(value)); }
  // Begins an entity; gives its handle.
  std::uint64_t begin(std::string_view type, std::uint64_t owner, std::string_view layer) {
    const std::uint64_t own = handle_++;
    tag(0, type).hex(5, own).hex(330, owner).tag(100, "AcDbEntity").tag(8, layer);
    return own;
  }
  static std::string hexText(std::uint64_t value) {
    char digits[20];
    std::string text(digits, std::to_chars(digits, digits + 20, value, 16).ptr);
    for (char& c : text) c = c >= 'a' ? static_cast<char>(c - 32) : c;
    return text;
  }

 private:
  std::string& out_;
  std::uint64_t handle_;
};

void pipe(Writer& w, std::size_t i, double x, double y, std::uint64_t space) {
  const std::uint64_t own = w.begin("POLYLINE", space, "RETE_CONDOTTE");
  w.tag(100, "AcDb3dPolyline").tag(66, "1").point(10, 0, 0, 0).tag(70, "8");
  w.tag(1001, "MISURA").tag(1000, "P" + std::to_string(i)).tag(1000, "PEAD").real(1040, 110);
  w.real(1040, 130.5)
      .tag(1070, "1")
      .tag(1071, std::to_string(i))
      .point(1010, x, y, 0)
      .tag(1000, "Open");
  for (int k = 0; k < 3; ++k) {
    w.begin("VERTEX", own, "RETE_CONDOTTE");
    w.tag(100, "AcDbVertex").tag(100, "AcDb3dPolylineVertex");
    w.point(10, x + 12.5 * k, y + 3.25 * k, 101.5 - k).tag(70, "32");
  }
  w.begin("SEQEND", own, "RETE_CONDOTTE");
}

void node(Writer& w, std::size_t i, double x, double y, std::uint64_t space) {
  const std::uint64_t own = w.begin("INSERT", space, "RETE_NODI");
  w.tag(100, "AcDbBlockReference").tag(66, "1").tag(2, "NODO").point(10, x, y, 101.5);
  w.tag(1001, "MISURA").tag(1000, "N" + std::to_string(i)).real(1040, 0.25).tag(1070, "0");
  const std::string values[] = {"N" + std::to_string(i), "101.500", "0.250"};
  const char* names[] = {"ID", "QUOTA", "PORTATA"};
  for (int k = 0; k < 3; ++k) {
    w.begin("ATTRIB", own, "RETE_NODI");
    w.tag(100, "AcDbText").point(10, x + 1, y - 1.5 * k, 101.5).real(40, 1).tag(1, values[k]);
    w.tag(100, "AcDbAttribute").tag(2, names[k]).tag(70, "0");
  }
  w.begin("SEQEND", own, "RETE_NODI");
}

}  // namespace

platform::Result<void> makeDrawing(std::size_t elements, const std::string& path) {
  AcDbDatabase database;
  cad::Drawing& d = database.drawing();
  for (const char16_t* layer : {u"RETE_CONDOTTE", u"RETE_NODI"})
    d.structure().layerNamed(layer, true);
  d.structure().registerApplication(u"MISURA");
  d.structure().addBlock(u"NODO", {0, 0, 0});
  const std::uint64_t space = d.record(d.structure().modelSpace()).handle,
                      first = d.records().takeHandle();
  std::string empty = d.toBytes();
  const std::size_t seed = empty.find('\n', empty.find("$HANDSEED\n  5\n") + 10) + 1;
  empty.replace(seed, empty.find('\n', seed) - seed,
                Writer::hexText(first + kHandlesPerElement * elements));
  const std::string_view mark = "  2\nENTITIES\n";
  const std::size_t split = empty.find(mark) + mark.size();

  auto file = platform::SaveFile::begin(path);
  if (!file) return platform::Error{file.error()};
  file->write(std::string_view(empty).substr(0, split));
  std::string text;
  for (std::size_t i = 0; i < elements; ++i) {
    Writer w(text, first + kHandlesPerElement * i);
    const double x = 500000 + 50.0 * static_cast<double>(i % 1000);
    const double y = 4500000 + 50.0 * static_cast<double>(i / 1000);
    pipe(w, i, x, y, space);
    node(w, i, x, y, space);
    if (text.size() > (1U << 20)) {
      file->write(text);
      text.clear();
    }
  }
  file->write(text);
  file->write(std::string_view(empty).substr(split));
  return file->commit(false);
}

}  // namespace bench
