#include "support/svg_reader.h"

#include <cctype>
#include <cstdlib>
#include <cstring>
#include <stdexcept>

namespace kestrana::testsupport {

namespace {

class Reader {
 public:
  explicit Reader(const std::string& s) : s_(s) {}

  SvgDocument Read() {
    SvgDocument doc;
    bool have_root = false;
    while (true) {
      SkipSpace();
      if (pos_ >= s_.size()) break;
      if (Starts("<?")) {
        Skip("?>");
      } else if (Starts("<!--")) {
        doc.comments.push_back(Comment());
      } else if (Starts("<!")) {
        Skip(">");
      } else if (Starts("<")) {
        if (have_root) Fail("a second root element");
        doc.root = Element(doc.comments);
        have_root = true;
      } else {
        Fail("text outside the root element");
      }
    }
    if (!have_root) Fail("no root element");
    return doc;
  }

 private:
  [[noreturn]] void Fail(const std::string& what) const {
    throw std::runtime_error("SVG: " + what + " at offset " +
                             std::to_string(pos_));
  }
  bool Starts(const char* p) const {
    return s_.compare(pos_, std::strlen(p), p) == 0;
  }
  void SkipSpace() {
    while (pos_ < s_.size() &&
           std::isspace(static_cast<unsigned char>(s_[pos_])))
      ++pos_;
  }
  void Skip(const char* end) {
    size_t at = s_.find(end, pos_);
    if (at == std::string::npos) Fail(std::string("missing ") + end);
    pos_ = at + std::strlen(end);
  }
  std::string Comment() {
    size_t start = pos_ + 4;
    Skip("-->");
    return s_.substr(start, pos_ - 3 - start);
  }
  std::string Name() {
    size_t start = pos_;
    while (pos_ < s_.size() &&
           (std::isalnum(static_cast<unsigned char>(s_[pos_])) ||
            s_[pos_] == ':' || s_[pos_] == '-' || s_[pos_] == '_' ||
            s_[pos_] == '.'))
      ++pos_;
    if (pos_ == start) Fail("a name expected");
    return s_.substr(start, pos_ - start);
  }
  std::string Decode(const std::string& raw) const {
    std::string out;
    for (size_t i = 0; i < raw.size(); ++i) {
      if (raw[i] != '&') {
        out += raw[i];
        continue;
      }
      size_t semi = raw.find(';', i);
      if (semi == std::string::npos)
        throw std::runtime_error("SVG: bad entity");
      std::string name = raw.substr(i + 1, semi - i - 1);
      if (name == "amp")
        out += '&';
      else if (name == "lt")
        out += '<';
      else if (name == "gt")
        out += '>';
      else if (name == "quot")
        out += '"';
      else if (name == "apos")
        out += '\'';
      else if (!name.empty() && name[0] == '#') {
        long cp = name.size() > 1 && name[1] == 'x'
                      ? std::strtol(name.c_str() + 2, nullptr, 16)
                      : std::strtol(name.c_str() + 1, nullptr, 10);
        if (cp < 0x80) {
          out += static_cast<char>(cp);
        } else if (cp < 0x800) {
          out += static_cast<char>(0xC0 | (cp >> 6));
          out += static_cast<char>(0x80 | (cp & 0x3F));
        } else {
          out += static_cast<char>(0xE0 | (cp >> 12));
          out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
          out += static_cast<char>(0x80 | (cp & 0x3F));
        }
      } else {
        throw std::runtime_error("SVG: unknown entity &" + name + ";");
      }
      i = semi;
    }
    return out;
  }
  SvgNode Element(std::vector<std::string>& comments) {
    ++pos_;  // '<'
    SvgNode node;
    node.name = Name();
    while (true) {
      SkipSpace();
      if (Starts("/>")) {
        pos_ += 2;
        return node;
      }
      if (Starts(">")) {
        ++pos_;
        break;
      }
      std::string attr = Name();
      SkipSpace();
      if (!Starts("=")) Fail("'=' expected after " + attr);
      ++pos_;
      SkipSpace();
      char quote = pos_ < s_.size() ? s_[pos_] : 0;
      if (quote != '"' && quote != '\'') Fail("a quoted value expected");
      size_t end = s_.find(quote, pos_ + 1);
      if (end == std::string::npos) Fail("unterminated value");
      if (node.attrs.count(attr)) Fail("attribute " + attr + " given twice");
      node.attrs[attr] = Decode(s_.substr(pos_ + 1, end - pos_ - 1));
      pos_ = end + 1;
    }
    while (true) {
      if (pos_ >= s_.size()) Fail("unclosed <" + node.name + ">");
      if (Starts("</")) {
        pos_ += 2;
        if (Name() != node.name) Fail("mismatched end of <" + node.name + ">");
        SkipSpace();
        if (!Starts(">")) Fail("'>' expected");
        ++pos_;
        return node;
      }
      if (Starts("<!--")) {
        comments.push_back(Comment());
      } else if (Starts("<")) {
        node.children.push_back(Element(comments));
      } else {
        size_t end = s_.find('<', pos_);
        if (end == std::string::npos) Fail("unclosed <" + node.name + ">");
        node.text += Decode(s_.substr(pos_, end - pos_));
        pos_ = end;
      }
    }
  }

  const std::string& s_;
  size_t pos_ = 0;
};

void Collect(const SvgNode& node, const std::string& name,
             std::vector<const SvgNode*>& out) {
  for (const SvgNode& child : node.children) {
    if (name.empty() || child.name == name) out.push_back(&child);
    Collect(child, name, out);
  }
}

}  // namespace

const std::string& SvgNode::Attr(const std::string& attr) const {
  auto it = attrs.find(attr);
  if (it == attrs.end())
    throw std::runtime_error("<" + name + "> has no attribute " + attr);
  return it->second;
}

double SvgNode::Num(const std::string& attr) const {
  const std::string& value = Attr(attr);
  char* end = nullptr;
  double v = std::strtod(value.c_str(), &end);
  if (value.empty() || *end != '\0')
    throw std::runtime_error(attr + "=\"" + value + "\" is not a number");
  return v;
}

std::vector<const SvgNode*> SvgNode::All(const std::string& element) const {
  std::vector<const SvgNode*> out;
  Collect(*this, element, out);
  return out;
}

std::vector<const SvgNode*> SvgNode::WithHandle(
    const std::string& handle) const {
  std::vector<const SvgNode*> out;
  for (const SvgNode* n : All())
    if (n->Has("data-handle") && n->Attr("data-handle") == handle)
      out.push_back(n);
  return out;
}

SvgDocument ParseSvg(const std::string& text) { return Reader(text).Read(); }

std::vector<double> Numbers(const std::string& text) {
  std::vector<double> out;
  const char* p = text.c_str();
  while (*p) {
    if (std::isdigit(static_cast<unsigned char>(*p)) || *p == '-' ||
        *p == '+' || *p == '.') {
      char* end = nullptr;
      double v = std::strtod(p, &end);
      if (end != p) {
        out.push_back(v);
        p = end;
        continue;
      }
    }
    ++p;
  }
  return out;
}

}  // namespace kestrana::testsupport
