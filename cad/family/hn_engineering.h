// HNEngineering: longitudinal profiles as objects of the drawing, and polylines as lists of
// vertices.
//
// A profile is a frame with an elevation axis and a band of rows below it, and a title block to the
// left of the band. The frame is drawn in plain units: one unit along X is one unit of chainage,
// one unit along Y one of elevation; the scales are texts that the draughtsman gives. In the
// drawing it is two block references: the title block, which carries all that the profile knows and
// is what users pick, and the frame, to which the title block holds the handle.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "cad/api/database.h"
#include "cad/api/editor.h"
#include "cad/family/hn_geometry.h"

// A manhole of a profile, in the order in which they were placed.
struct pozzetto {
  double prog = 0;  // chainage, m
  std::u16string nome;
  double quota = 0;  // level, m
  std::u16string descrizione;
  std::u16string codice;
  pozzetto* next = nullptr;
};

// A polyline as a list of its vertices. Chainage and total length are both measured in space, so
// that the last vertex stands at the total length, also where the course is vertical. A closed
// polyline ends at its start.
struct listadatipoli {
  datipoli3d* dati3d = nullptr;  // the vertices; a closed polyline repeats the first at the end
  int numvertici = 0;
  double lunghezza = 0;
  AcGePoint3d primo, ultimo;
  listadatipoli* next = nullptr;
};

class CAD_API GestioneOggetto {
 public:
  // A profile that is still to be drawn. Kind 3 is the profile of a network under pressure, the
  // only kind that there is.
  explicit GestioneOggetto(int kind);
  // The profile of a title block. Where that is none, everything reads as empty.
  explicit GestioneOggetto(AcDbObjectId titleBlock);
  GestioneOggetto(const GestioneOggetto&) = delete;
  GestioneOggetto& operator=(const GestioneOggetto&) = delete;
  virtual ~GestioneOggetto();

  // --- what the title block says. Before drawing.
  void SetOBJ1Nome1(std::u16string_view text);  // the network
  void SetOBJ2Nome2(std::u16string_view text);  // the profile
  void SetOBJ3Prog(std::u16string_view text);   // chainage of the first node, m
  void SetOBJ4QRif(std::u16string_view text);   // reference level, at the bottom of the frame, m
  void SetOBJ5ScX(std::u16string_view text);    // scale of lengths, the number behind "1:"
  void SetOBJ6ScY(std::u16string_view text);    // scale of heights
  void SetPInsCART(const AcGePoint3d& point);   // lower left corner of the title block
  // Size of the drawing area above the band, in drawing units.
  void SetAltezzaLarghezzaUtile(double height, double width);

  // Draws frame and title block into the model space of the database, null for the current one.
  // False, with nothing drawn, where the size is no size or the profile is in the drawing already.
  bool Disegna_HNPX_HNRR(AcDbDatabase* database);

  // --- the links of the profile
  // Their names in chain order: extended data "HN-RR_PROFILO_EPA" with one 1000 item each. The
  // chain stays the caller's.
  void SetXdataProfSewer(const resbuf* names);
  // Puts the names on the title block and completes the band from the network's elements in the
  // drawing, with a row for the levels of the ground where its line stands over the profile (layer
  // TERRENO of the settings file). False when the profile is not in the drawing or the names do not
  // fit on it.
  bool UpdateXdata();
  // The names as they stand on the title block, header included; null when there are none. The
  // caller owns the chain.
  resbuf* GetXdataProfEpa() const;

  // --- what a drawn profile knows
  std::u16string GetNome1() const;
  std::u16string GetNome2() const;
  std::u16string GetOBJ3Prog() const;
  // The point of chainage 0 and elevation 0: a point of the profile stands at the origin's X plus
  // its chainage and the origin's Y plus its elevation. (0, 0, 0) before drawing.
  AcGePoint3d GetOrigin() const;
  // Lower right corner of the frame.
  AcGePoint3d GetPInsFINOBJ() const;
  AcDbObjectId titleBlock() const;

  // --- manholes
  // The first of the list, or null; the object owns it, until the next call.
  const pozzetto* GetListaPozzetti();
  // Draws a manhole on the profile, at its chainage and level, and adds it to the list. False when
  // the profile is not in the drawing.
  bool AddPozzetto(const pozzetto& manhole);

 private:
  struct State;
  std::unique_ptr<State> state_;
};

// The path of a polyline of the drawing (3D or light) in plan, with chainages in plan; the caller
// releases it with LiberaDATIPOLI. 1, or 0 and null when the entity is no polyline. The flags are
// of no effect: all vertices are read, as they are.
CAD_API short LeggiDATIPOLI(const ads_name& entity, datipoli*& path, int flag1 = 0, int flag2 = 0);

// The list of one polyline, which the caller releases with LiberaLISTADATIPOLI; null when the
// object is no 3D polyline. What follows the id serves paths with offsets, slopes and names; a
// polyline is read as it stands, and the list goes in front of `rest`.
CAD_API listadatipoli* AllocaLISTADATIPOLI(AcDbObjectId polyline, int kind, double, int, double,
                                           double, int, const char16_t* name, listadatipoli* rest,
                                           int);
CAD_API void LiberaLISTADATIPOLI(listadatipoli* list);
