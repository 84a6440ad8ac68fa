#include "memhost/text_metrics.h"

#include <cctype>

#include "memhost/utf8.h"

namespace kestrana::memhost {

namespace {

// Advances of the printable ASCII characters 32..126 in thousandths of an
// em; the capital height of the face is 716 thousandths.
constexpr int kAdvance[95] = {
    278, 278, 355, 556, 556,  889, 667, 191, 333, 333, 389, 584, 278, 333,
    278, 278, 556, 556, 556,  556, 556, 556, 556, 556, 556, 556, 278, 278,
    584, 584, 584, 556, 1015, 667, 667, 722, 722, 667, 611, 778, 722, 278,
    500, 667, 556, 833, 722,  778, 667, 778, 722, 667, 611, 722, 667, 944,
    667, 667, 611, 278, 278,  278, 469, 556, 333, 556, 556, 500, 556, 556,
    278, 556, 556, 222, 222,  500, 222, 833, 556, 556, 556, 556, 333, 500,
    278, 556, 500, 722, 500,  500, 500, 334, 260, 334, 584};
constexpr double kCapHeight = 716.0;

}  // namespace

std::vector<DisplayRun> DisplayRuns(std::string_view raw) {
  std::vector<DisplayRun> runs(1);
  for (size_t i = 0; i < raw.size();) {
    if (raw[i] == '%' && i + 2 < raw.size() && raw[i + 1] == '%') {
      char code = static_cast<char>(
          std::tolower(static_cast<unsigned char>(raw[i + 2])));
      DisplayRun& run = runs.back();
      switch (code) {
        case 'c':
          AppendUtf8(run.text, 0xD8);
          i += 3;
          continue;
        case 'd':
          AppendUtf8(run.text, 0xB0);
          i += 3;
          continue;
        case 'p':
          AppendUtf8(run.text, 0xB1);
          i += 3;
          continue;
        case '%':
          run.text += '%';
          i += 3;
          continue;
        case 'u':
        case 'o': {
          DisplayRun next = run;
          next.text.clear();
          if (code == 'u')
            next.underline = !run.underline;
          else
            next.overline = !run.overline;
          if (run.text.empty())
            run = next;
          else
            runs.push_back(next);
          i += 3;
          continue;
        }
        default:
          if (i + 4 < raw.size() &&
              std::isdigit(static_cast<unsigned char>(raw[i + 2])) &&
              std::isdigit(static_cast<unsigned char>(raw[i + 3])) &&
              std::isdigit(static_cast<unsigned char>(raw[i + 4]))) {
            int value = (raw[i + 2] - '0') * 100 + (raw[i + 3] - '0') * 10 +
                        (raw[i + 4] - '0');
            AppendUtf8(run.text, static_cast<char32_t>(value));
            i += 5;
            continue;
          }
      }
    }
    runs.back().text += raw[i];
    ++i;
  }
  if (runs.size() > 1 && runs.back().text.empty()) runs.pop_back();
  return runs;
}

std::string DisplayText(std::string_view raw) {
  std::string out;
  for (const auto& run : DisplayRuns(raw)) out += run.text;
  return out;
}

double CharAdvance(char32_t cp) {
  if (cp >= 32 && cp <= 126) return kAdvance[cp - 32] / kCapHeight;
  switch (cp) {
    case 0xD8:
      return 778 / kCapHeight;  // Ø
    case 0xB0:
      return 400 / kCapHeight;  // °
    case 0xB1:
      return 584 / kCapHeight;  // ±
    default:
      return 0.78;
  }
}

double TextWidth(std::string_view raw, double height, double width_factor) {
  double units = 0;
  for (char32_t cp : DecodeUtf8(DisplayText(raw))) units += CharAdvance(cp);
  return units * height * width_factor;
}

}  // namespace kestrana::memhost
