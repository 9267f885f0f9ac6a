// Changes to a document, collected against its unchanged text and applied at once.
//
// A row that nothing touches keeps its bytes. A new value takes the place of the old one: the next
// column stays where it is while blanks between suffice, and one blank stays otherwise; tabs,
// comment and line end stay. Comments on rows of their own stay when a row goes. Taking a row out
// wins over changing it; of two values for one place the later counts.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "epanet/document.h"

namespace epanet {

struct Change {
  enum class What : std::uint8_t { changed, inserted, removed, commentedOut };
  What what = What::changed;
  RowId row = kNoRow;  // of the old document; of an inserted row the one that it follows
  Section section = Section::before;
  std::string before, after;  // without line end
};
struct EditResult {
  std::string text;
  std::vector<Change> changes;  // in the order of rows
};

class Editor {
 public:
  // The document stays the caller's and must outlive the editor.
  explicit Editor(const Document& document) : document_(document) {}

  // The token becomes the text; one behind the row's last token is appended, and those between
  // must be set too. Texts with blanks, and empty ones, are quoted.
  void setToken(RowId row, int token, std::string_view text);
  void removeToken(RowId row, int token);
  // A row of its own behind `after`, in the columns of `after` when that has data, else of any row
  // of the section; the comment mark of a neighbour that has nothing behind it is copied too.
  void insertRow(RowId after, const std::vector<std::string>& tokens);
  // The same at the end of a section, behind what was put there before. A section that the file
  // lacks is made: one of elements behind others of its kind, any other before [END] or at the end.
  void addRow(Section section, const std::vector<std::string>& tokens);
  // A row as it stands, without line end.
  void addText(Section section, std::string_view row);
  void removeRow(RowId row);
  // The row stays as a comment behind the reason: ";reason: row".
  void commentOut(RowId row, std::string_view reason);

  bool empty() const { return rows_.empty() && sections_.empty(); }
  bool removed(RowId row) const;
  // How many tokens the row has with those that have been set.
  int countTokens(RowId row) const;
  // The same less those that have been removed.
  int countKept(RowId row) const;
  EditResult apply() const;

 private:
  struct Edits {
    enum class Fate : std::uint8_t { stays, removed, commentedOut } fate = Fate::stays;
    std::string reason;
    std::map<int, std::string> tokens;
    std::vector<int> dropped;
    std::vector<std::string> after;  // rows that follow
  };
  std::string changedRow(RowId row, const Edits& edits) const;
  std::string styled(RowId neighbour, const std::vector<std::string>& tokens) const;
  RowId anchorOf(Section section) const;
  RowId modelRow(Section section) const;

  const Document& document_;
  std::map<RowId, Edits> rows_;
  std::map<Section, std::vector<std::string>> sections_;  // rows of sections that are missing
};

}  // namespace epanet
