// Indexes the bytes of a DXF file: one pass that finds where every record begins and ends and picks
// up the few tags by which the database finds its objects. Nothing is copied and nothing is
// interpreted beyond that; the text of a record stays where it is.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "cad/dxf/chunked_list.h"
#include "cad/dxf/names.h"
#include "cad/dxf/tags.h"
#include "platform/result.h"

namespace cad {

// Record types that the database knows, numbered in the order in which the scanner enters their
// names.
enum class Type : std::uint16_t {
  other = 0,
  section,
  endsec,
  eof,
  table,
  endtab,
  block,
  endblk,
  classRecord,
  blockRecord,
  layer,
  ltype,
  style,
  appid,
  dimstyle,
  vport,
  view,
  ucs,
  insert,
  attrib,
  attdef,
  seqend,
  polyline,
  vertex,
  line,
  point,
  text,
  mtext,
  lwpolyline,
  circle,
  arc,
  ellipse,
  spline,
  solid,
  trace,
  face,
  hatch,
  dimension,
  acadTable,
  dictionary,
  xrecord,
  tableStyle,
  layout,
  viewport,
  leader,
  multileader,
  ray,
  xline,
};
// The DXF name of a type ("INSERT"); empty for `other`.
std::string_view nameOf(Type type);

// One record of a drawing: everything between a group 0 and the next. 56 bytes, and a drawing has
// millions of them, so what a record means is kept elsewhere.
struct Record {
  enum Flag : std::uint16_t {
    erased = 1,    // left out of the file
    space = 2,     // lies in model space or in a layout
    paper = 4,     // of these, in a paper space
    child = 8,     // vertex, attribute or end mark behind an entity
    open = 16,     // somebody has it open
    touched = 32,  // its state before the running command has been kept
    changed = 64,  // differs from the file it came from
    synthetic =
        128,         // stands for something that the file does not write (model space of R12 files)
    poly3d = 256,    // POLYLINE that is a 3D polyline
    polyMesh = 512,  // POLYLINE that is a mesh
    hasParts = 1024,  // INSERT followed by attributes
    stored = 2048,    // its text lies in the drawing's own memory, not in the file's
    hidden = 4096,    // entity that is drawn nowhere, whatever its layer says
    closed = 8192,    // POLYLINE that goes back to its first vertex
  };
  const char* bytes = nullptr;
  std::uint64_t handle = 0;
  std::uint32_t size = 0;
  std::uint32_t next = 0, previous = 0;  // file order
  std::uint32_t owner =
      0;  // what contains it: block, table, or the entity of a vertex or attribute
  std::uint32_t layer = 0;  // names
  std::uint32_t name = 0;   // block of an INSERT, name of a table entry, block or section
  std::uint32_t typeName = 0;
  std::uint32_t apps = 0;  // set of applications with extended data
  Type type = Type::other;
  std::uint16_t flags = 0;

  bool is(Flag f) const { return (flags & f) != 0; }
  void set(Flag f, bool on = true) {
    flags = static_cast<std::uint16_t>(on ? flags | f : flags & ~f);
  }
  std::string_view text() const { return {bytes, size}; }
};

using RecordList = ChunkedList<Record>;

struct ScannedFile {
  Format format;
  std::string_view preamble;  // what stands before the first record
  RecordList records;         // in file order; [0] is unused
  std::string_view trailer;   // blank bytes behind the last record of a file without end mark
  bool sawEof = false;
};

// Where names are entered: symbols, the words of the format (types of records, sections, tables),
// and sets of applications. A layer "Text" and the type TEXT are no namesakes.
struct NameTables {
  NameTable& symbols;
  NameTable& types;
  NameSets& sets;
};
// Indexes a whole file. `name` is for messages. The bytes must outlive the records.
platform::Result<ScannedFile> scanDxf(std::string_view bytes, const std::string& name,
                                      NameTables names);
// Picks up the same from the tags of one record made or changed later.
void indexTags(Record& record, const TagList& tags, NameTables names);
// Gives a record what indexTags gave another one whose tags say the same to it. The handle stays.
void copyIndex(Record& record, const Record& like);

// Enters the names of the known types, so that their numbers equal the values of Type.
void enterTypeNames(NameTable& types);

}  // namespace cad
