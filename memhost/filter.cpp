#include "memhost/filter.h"

#include <algorithm>
#include <cmath>

#include "memhost/document.h"
#include "memhost/wildcard.h"

namespace kestrana::memhost {

using host::ErrorCode;
using host::HostError;
using host::XValue;

namespace {

std::string Upper(std::string s) {
  for (char& c : s)
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 32);
  return s;
}

[[noreturn]] void Bad(const std::string& what) {
  throw HostError(ErrorCode::kBadArgument, "selection filter: " + what);
}

std::string FilterText(const host::XItem& item) {
  if (!item.value.IsText())
    Bad("group code " + std::to_string(item.code) + " needs a text value");
  return item.value.Text();
}

double FilterNumber(const host::XItem& item) {
  if (item.value.IsReal()) return item.value.Real();
  if (item.value.IsInt()) return item.value.Int();
  Bad("group code " + std::to_string(item.code) + " needs a number");
}

}  // namespace

struct CompiledFilter::Node {
  enum class Op { kAnd, kOr, kNot, kXor, kTest };
  Op op = Op::kAnd;
  std::vector<std::unique_ptr<Node>> children;
  int code = 0;
  std::optional<WildcardPattern> pattern;  // text tests
  double number = 0;
  std::string relation = "=";
  std::optional<WildcardPattern> app;  // application of an XData value test

  bool Eval(const MemEntity& e) const {
    switch (op) {
      case Op::kAnd:
        return std::all_of(children.begin(), children.end(),
                           [&](const auto& c) { return c->Eval(e); });
      case Op::kOr:
        return std::any_of(children.begin(), children.end(),
                           [&](const auto& c) { return c->Eval(e); });
      case Op::kNot:
        return !children[0]->Eval(e);
      case Op::kXor:
        return children[0]->Eval(e) != children[1]->Eval(e);
      case Op::kTest:
        return Test(e);
    }
    return false;
  }

  // The index keys this node asks for: a test of `test_code` with plain
  // names, or an OR of such tests only.
  std::vector<std::string> Keys(int test_code) const {
    std::vector<std::string> keys;
    if (op == Op::kTest) {
      if (code == test_code && pattern) keys = pattern->ExactNames();
      return keys;
    }
    if (op != Op::kOr || children.empty()) return keys;
    for (const auto& child : children) {
      std::vector<std::string> more = child->Keys(test_code);
      if (more.empty()) return {};
      keys.insert(keys.end(), more.begin(), more.end());
    }
    std::sort(keys.begin(), keys.end());
    keys.erase(std::unique(keys.begin(), keys.end()), keys.end());
    return keys;
  }

  bool Compare(double value) const {
    constexpr double kEps = 1e-10;
    double diff = value - number;
    double tol = kEps * std::max(1.0, std::fabs(number));
    if (relation == "=") return std::fabs(diff) <= tol;
    if (relation == "!=" || relation == "/=" || relation == "<>")
      return std::fabs(diff) > tol;
    if (relation == "<") return diff < -tol;
    if (relation == "<=") return diff <= tol;
    if (relation == ">") return diff > tol;
    if (relation == ">=") return diff >= -tol;
    return true;  // "*"
  }

  bool Test(const MemEntity& e) const {
    switch (code) {
      case 0:
        return pattern->Matches(
            const_cast<MemEntity&>(e).AsHostEntity().EntityName());
      case 2: {
        auto* ref = e.AsBlockReference();
        return ref && pattern->Matches(ref->block_name_);
      }
      case 8:
        return pattern->Matches(e.LayerName());
      case 62:
        return Compare(e.color_);
      case 1001:
        return e.AnyXDataApp(
            [&](const std::string& name) { return pattern->Matches(name); });
      default:
        break;
    }
    // A value test looks at the records of its application.
    for (const auto& rec : e.XData()) {
      if (app && !app->Matches(rec[0].value.Text())) continue;
      for (size_t i = 1; i < rec.size(); ++i) {
        const auto& item = rec[i];
        if (item.code != code) continue;
        if (code == 1000) {
          if (item.value.IsText() && pattern->Matches(item.value.Text()))
            return true;
        } else if (item.value.IsReal()) {
          if (Compare(item.value.Real())) return true;
        } else if (item.value.IsInt()) {
          if (Compare(item.value.Int())) return true;
        }
      }
    }
    return false;
  }
};

CompiledFilter::~CompiledFilter() = default;
CompiledFilter::CompiledFilter(CompiledFilter&&) noexcept = default;

CompiledFilter::CompiledFilter(const host::Filter& filter) {
  root_ = std::make_unique<Node>();
  std::vector<Node*> stack{root_.get()};
  std::optional<std::string> app;
  std::string relation = "=";
  for (const auto& item : filter) {
    if (item.code == -4) {
      std::string op = Upper(FilterText(item));
      auto open = [&](Node::Op kind) {
        auto node = std::make_unique<Node>();
        node->op = kind;
        Node* raw = node.get();
        stack.back()->children.push_back(std::move(node));
        stack.push_back(raw);
      };
      auto close = [&](Node::Op kind, const char* name) {
        if (stack.size() < 2 || stack.back()->op != kind)
          Bad(std::string("\"") + name + "\" closes no open group");
        Node* n = stack.back();
        if (kind == Node::Op::kNot && n->children.size() != 1)
          Bad("<NOT needs exactly one operand");
        if (kind == Node::Op::kXor && n->children.size() != 2)
          Bad("<XOR needs exactly two operands");
        stack.pop_back();
      };
      if (op == "<AND")
        open(Node::Op::kAnd);
      else if (op == "<OR")
        open(Node::Op::kOr);
      else if (op == "<NOT")
        open(Node::Op::kNot);
      else if (op == "<XOR")
        open(Node::Op::kXor);
      else if (op == "AND>")
        close(Node::Op::kAnd, "AND>");
      else if (op == "OR>")
        close(Node::Op::kOr, "OR>");
      else if (op == "NOT>")
        close(Node::Op::kNot, "NOT>");
      else if (op == "XOR>")
        close(Node::Op::kXor, "XOR>");
      else if (op == "=" || op == "!=" || op == "/=" || op == "<>" ||
               op == "<" || op == "<=" || op == ">" || op == ">=" || op == "*")
        relation = op;
      else
        Bad("unknown operator \"" + item.value.Text() + "\"");
      continue;
    }
    auto node = std::make_unique<Node>();
    node->op = Node::Op::kTest;
    node->code = item.code;
    switch (item.code) {
      case 0:
      case 2:
      case 8:
        node->pattern.emplace(FilterText(item), true);
        break;
      case 1001:
        app = FilterText(item);
        node->pattern.emplace(*app, true);
        break;
      case 1000:
        node->pattern.emplace(FilterText(item), true);
        if (app) node->app.emplace(*app, true);
        break;
      case 62:
      case 1040:
      case 1070:
        node->number = FilterNumber(item);
        node->relation = relation;
        if (app) node->app.emplace(*app, true);
        break;
      default:
        Bad("group code " + std::to_string(item.code) + " is not supported");
    }
    relation = "=";
    stack.back()->children.push_back(std::move(node));
  }
  if (stack.size() != 1) Bad("a group is not closed");
  // The first top-level test or OR that names plain values narrows.
  for (const auto& child : root_->children) {
    if (app_keys_.empty()) app_keys_ = child->Keys(1001);
    if (type_keys_.empty()) type_keys_ = child->Keys(0);
    if (block_keys_.empty()) block_keys_ = child->Keys(2);
  }
}

bool CompiledFilter::Matches(const MemEntity& entity) const {
  return root_->Eval(entity);
}

}  // namespace kestrana::memhost
