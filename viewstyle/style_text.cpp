#include "viewstyle/style_text.h"

#include <map>
#include <optional>
#include <set>
#include <sstream>
#include <stdexcept>
#include <vector>

#include "core/names.h"
#include "core/text.h"
#include "host/limits.h"

namespace kestrana::viewstyle {

namespace {

using F = ViewStyleField;
constexpr int Index(F field) { return static_cast<int>(field); }

constexpr char kShowWord[] = "show";
constexpr char kHideWord[] = "hide";
constexpr char kTextStyleKey[] = "text style";
constexpr char kTextHeightKey[] = "text height";
constexpr char kPrefixKey[] = "prefix";
constexpr char kSuffixKey[] = "suffix";
constexpr char kPrecisionKey[] = "precision";
constexpr char kDecimalsKey[] = "decimals";
constexpr char kNotationKey[] = "notation";
// Precision and decimals are digit counts.
constexpr int kMaxDigits = 15;

const char* const kNotations[] = {"decimal", "percent", "ratio"};

std::string ItemTitle(const ItemInfo& item) {
  return "the " + std::string(KindName(item.kind)) + " " + item.name + " item";
}

std::string Quote(std::string_view text) {
  std::string quoted = "\"";
  for (char c : text) {
    if (c == '"' || c == '\\') quoted += '\\';
    quoted += c;
  }
  return quoted + "\"";
}

// A text height: a positive number within range, else nullopt.
std::optional<double> TextHeightOf(std::string_view text) {
  std::optional<double> value = core::ParseNumberInRange(text);
  if (value && *value > 0) return value;
  return std::nullopt;
}

bool IsDigits(std::string_view text) {
  if (text.empty() || text.size() > 2) return false;
  for (char c : text)
    if (c < '0' || c > '9') return false;
  return core::NumericValue(text) <= kMaxDigits;
}

// Which settings an item form carries besides the show flag.
bool HasTexts(ItemForm form) {
  return form == ItemForm::kText || form == ItemForm::kNumber ||
         form == ItemForm::kSlope;
}
bool HasDigits(ItemForm form) {
  return form == ItemForm::kNumber || form == ItemForm::kSlope ||
         form == ItemForm::kCoordinates;
}

std::string Trim(std::string_view text) {
  size_t begin = text.find_first_not_of(" \t\r");
  if (begin == std::string_view::npos) return "";
  size_t end = text.find_last_not_of(" \t\r");
  return std::string(text.substr(begin, end - begin + 1));
}

// A word or a quoted text of a value.
struct Token {
  std::string text;
  bool quoted = false;
};

std::vector<Token> Tokenize(std::string_view value, int line) {
  std::vector<Token> tokens;
  size_t i = 0;
  while (i < value.size()) {
    char c = value[i];
    if (c == ' ' || c == '\t') {
      ++i;
      continue;
    }
    Token token;
    if (c == '"') {
      token.quoted = true;
      ++i;
      bool closed = false;
      while (i < value.size()) {
        char d = value[i++];
        if (d == '\\' && i < value.size()) {
          token.text += value[i++];
        } else if (d == '"') {
          closed = true;
          break;
        } else {
          token.text += d;
        }
      }
      if (!closed) throw StyleTextError(line, "a quoted text is not closed");
    } else {
      while (i < value.size() && value[i] != ' ' && value[i] != '\t' &&
             value[i] != '"')
        token.text += value[i++];
    }
    tokens.push_back(std::move(token));
  }
  return tokens;
}

// The item text described by the value of an item line.
std::string ParseItemValue(const ItemInfo& item, std::string_view value,
                           int line) {
  const std::string title = ItemTitle(item);
  std::vector<Token> tokens = Tokenize(value, line);
  if (tokens.empty() || tokens[0].quoted ||
      (tokens[0].text != kShowWord && tokens[0].text != kHideWord))
    throw StyleTextError(line, title + " starts with show or hide");
  ItemSettings settings;
  settings.show = tokens[0].text == kShowWord;
  std::set<std::string> seen;
  for (size_t i = 1; i < tokens.size(); i += 2) {
    const std::string& key = tokens[i].text;
    const bool text_key = key == kPrefixKey || key == kSuffixKey;
    const bool digit_key = key == kPrecisionKey || key == kDecimalsKey;
    const bool notation_key = key == kNotationKey;
    if (tokens[i].quoted || !(text_key || digit_key || notation_key))
      throw StyleTextError(line, "unknown setting \"" + key + "\" in " + title);
    if ((text_key && !HasTexts(item.form)) ||
        (digit_key && !HasDigits(item.form)) ||
        (notation_key && item.form != ItemForm::kSlope))
      throw StyleTextError(line, title + " has no " + key);
    if (!seen.insert(key).second)
      throw StyleTextError(line, key + " is given twice in " + title);
    if (i + 1 >= tokens.size())
      throw StyleTextError(line, key + " has no value in " + title);
    const Token& v = tokens[i + 1];
    if (text_key) {
      if (!v.quoted)
        throw StyleTextError(
            line, "the " + key + " of " + title + " is a quoted text");
      if (v.text.find(';') != std::string::npos)
        throw StyleTextError(
            line, "the " + key + " of " + title + " cannot hold \";\"");
      (key == kPrefixKey ? settings.prefix : settings.suffix) = v.text;
    } else if (digit_key) {
      if (v.quoted || !IsDigits(v.text))
        throw StyleTextError(
            line, "the " + key + " of " + title +
                      " is a whole number from 0 to 15, not \"" + v.text +
                      "\"");
      (key == kPrecisionKey ? settings.precision : settings.decimals) = v.text;
    } else {
      std::optional<int> notation;
      for (int n = 0; n < 3; ++n)
        if (v.text == kNotations[n]) notation = n;
      if (v.quoted || !notation)
        throw StyleTextError(line, "the notation of " + title +
                                       " is decimal, percent or ratio, not \"" +
                                       v.text + "\"");
      settings.notation = std::to_string(*notation);
    }
  }
  std::vector<const char*> required;
  if (HasDigits(item.form)) required = {kPrecisionKey, kDecimalsKey};
  if (item.form == ItemForm::kSlope) required.push_back(kNotationKey);
  for (const char* key : required)
    if (!seen.count(key))
      throw StyleTextError(line, title + " needs its " + key);
  return ItemText(item, settings);
}

}  // namespace

StyleTextError::StyleTextError(int line, const std::string& message)
    : InvalidInputError(
          line > 0 ? "line " + std::to_string(line) + ": " + message : message),
      line_(line) {}

ItemSettings ReadItem(const ItemInfo& item, std::string_view text) {
  std::vector<std::string> p = core::Split(text);
  auto refuse = [&]() -> StyleTextError {
    return StyleTextError(0, ItemTitle(item) + " holds \"" + std::string(text) +
                                 "\", which is not a " +
                                 std::to_string(PieceCount(item.form)) +
                                 "-piece item of its kind");
  };
  if (static_cast<int>(p.size()) != PieceCount(item.form)) throw refuse();
  if (p[item_piece::kShow] != kShown && p[item_piece::kShow] != kHidden)
    throw refuse();
  ItemSettings settings;
  settings.show = p[item_piece::kShow] == kShown;
  if (item.form == ItemForm::kCoordinates) {
    settings.precision = p[coordinates_piece::kPrecision];
    settings.decimals = p[coordinates_piece::kDecimals];
  }
  if (HasTexts(item.form)) {
    settings.prefix = p[item_piece::kPrefix];
    settings.suffix = p[item_piece::kSuffix];
  }
  if (item.form == ItemForm::kNumber || item.form == ItemForm::kSlope) {
    settings.precision = p[item_piece::kPrecision];
    settings.decimals = p[item_piece::kDecimals];
  }
  if (item.form == ItemForm::kSlope) {
    settings.notation = p[item_piece::kNotation];
    if (NotationName(settings.notation).empty()) throw refuse();
  }
  if (HasDigits(item.form) &&
      (!IsDigits(settings.precision) || !IsDigits(settings.decimals)))
    throw refuse();
  return settings;
}

std::string ItemText(const ItemInfo& item, const ItemSettings& settings) {
  std::string text = settings.show ? kShown : kHidden;
  if (item.form == ItemForm::kCoordinates)
    return text + ";" + settings.precision + ";" + settings.decimals;
  if (HasTexts(item.form))
    text += ";" + settings.prefix + ";" + settings.suffix;
  if (item.form == ItemForm::kNumber || item.form == ItemForm::kSlope)
    text += ";" + settings.precision + ";" + settings.decimals;
  if (item.form == ItemForm::kSlope) text += ";" + settings.notation;
  return text;
}

std::string NotationName(std::string_view notation) {
  for (int n = 0; n < 3; ++n)
    if (notation == std::to_string(n)) return kNotations[n];
  return "";
}

std::string WriteStyleText(const ViewStyleSettings& style) {
  std::ostringstream out;
  const std::string& height = style.at(Index(F::kTextHeight));
  if (!TextHeightOf(height))
    throw StyleTextError(
        0, "the text height \"" + height + "\" is not a positive number");
  out << kTextStyleKey << " = " << Quote(style.at(Index(F::kTextStyle))) << "\n"
      << kTextHeightKey << " = " << height << "\n";
  std::optional<ElementKind> section;
  for (const ItemInfo& item : Items()) {
    if (section != item.kind) {
      out << "\n[" << KindName(item.kind) << "]\n";
      section = item.kind;
    }
    ItemSettings s = ReadItem(item, style.at(item.field));
    out << item.name << " = " << (s.show ? kShowWord : kHideWord);
    if (HasTexts(item.form)) {
      if (!s.prefix.empty()) out << " " << kPrefixKey << " " << Quote(s.prefix);
      if (!s.suffix.empty()) out << " " << kSuffixKey << " " << Quote(s.suffix);
    }
    if (HasDigits(item.form))
      out << " " << kPrecisionKey << " " << s.precision << " " << kDecimalsKey
          << " " << s.decimals;
    if (item.form == ItemForm::kSlope)
      out << " " << kNotationKey << " " << NotationName(s.notation);
    out << "\n";
  }
  return out.str();
}

ViewStyleSettings ReadStyleText(std::string_view text, std::string_view name) {
  ViewStyleSettings style(kViewStyleRecordLength);
  style[Index(F::kApplicationName)] = core::kAppName;
  style[Index(F::kStyleName)] = StyleNameField(name);
  style[Index(F::kElementType)] = kViewStylePoint;
  std::map<int, int> given;  // field -> line
  // The section being read: a position in kElementKinds, -1 before the
  // first one.
  int section = -1;
  int line_number = 0;
  std::istringstream in{std::string(text)};
  std::string raw;
  while (std::getline(in, raw)) {
    ++line_number;
    const std::string line = Trim(raw);
    if (line.empty() || line[0] == '#') continue;
    if (line.front() == '[') {
      if (line.back() != ']')
        throw StyleTextError(line_number, "a section line ends with \"]\"");
      const std::string title = Trim(line.substr(1, line.size() - 2));
      section = -1;
      for (size_t k = 0; k < kElementKinds.size(); ++k)
        if (title == KindName(kElementKinds[k])) section = static_cast<int>(k);
      if (section < 0)
        throw StyleTextError(line_number,
                             "unknown section [" + title +
                                 "]; sections are [gravity pipe], [pressure "
                                 "pipe], [gravity node] and [pressure node]");
      continue;
    }
    size_t equals = line.find('=');
    if (equals == std::string::npos)
      throw StyleTextError(
          line_number, "expected \"item = settings\", not \"" + line + "\"");
    const std::string key = Trim(line.substr(0, equals));
    const std::string value = Trim(line.substr(equals + 1));
    int field = -1;
    if (section < 0) {
      if (key == kTextStyleKey) field = Index(F::kTextStyle);
      if (key == kTextHeightKey) field = Index(F::kTextHeight);
      if (field < 0)
        throw StyleTextError(line_number,
                             "unknown item \"" + key +
                                 "\"; before the first section come only " +
                                 kTextStyleKey + " and " + kTextHeightKey);
    } else {
      const ElementKind kind = kElementKinds[section];
      for (const ItemInfo& item : Items())
        if (item.kind == kind && item.name == key) field = item.field;
      if (field < 0)
        throw StyleTextError(line_number, "unknown item \"" + key + "\" in [" +
                                              KindName(kind) + "]");
    }
    if (auto [at, fresh] = given.emplace(field, line_number); !fresh)
      throw StyleTextError(line_number, "\"" + key + "\" was given on line " +
                                            std::to_string(at->second));
    if (field == Index(F::kTextStyle)) {
      std::vector<Token> tokens = Tokenize(value, line_number);
      std::string style_name =
          tokens.size() == 1 && tokens[0].quoted ? tokens[0].text : value;
      if (style_name.empty() || style_name.find(';') != std::string::npos)
        throw StyleTextError(line_number,
                             "the text style is a name without \";\"");
      style[field] = style_name;
    } else if (field == Index(F::kTextHeight)) {
      if (!TextHeightOf(value))
        throw StyleTextError(line_number,
                             "the text height is a positive "
                             "number up to " +
                                 core::GeneralText(host::kLargestNumber) +
                                 ", not \"" + value + "\"");
      style[field] = value;
    } else {
      style[field] = ParseItemValue(ItemOfField(field), value, line_number);
    }
  }
  for (int field : {Index(F::kTextStyle), Index(F::kTextHeight)})
    if (!given.count(field))
      throw StyleTextError(
          0,
          std::string("the style file lacks its ") +
              (field == Index(F::kTextStyle) ? kTextStyleKey : kTextHeightKey));
  for (const ItemInfo& item : Items())
    if (!given.count(item.field))
      throw StyleTextError(0, "the style file lacks " + ItemTitle(item) +
                                  " (\"" + item.name + " = ...\" under [" +
                                  KindName(item.kind) + "])");
  return style;
}

}  // namespace kestrana::viewstyle
