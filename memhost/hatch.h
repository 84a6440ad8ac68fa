// Hatches and their boundary loops.
#pragma once

#include "memhost/object.h"

namespace kestrana::memhost {

class MemHatch final : public EntityImpl<host::Hatch> {
 public:
  std::string ObjectName() const override { return "AcDbHatch"; }
  EntityKind Kind() const override { return EntityKind::kHatch; }
  std::string EntityName() const override { return "HATCH"; }
  int PatternType() const override;
  std::string PatternName() const override;
  bool AssociativeHatch() const override;
  bool IsSolidFill() const override;
  void AppendOuterLoop(const std::vector<host::Entity*>& objects) override;
  void AppendInnerLoop(const std::vector<host::Entity*>& objects) override;
  int NumberOfLoops() const override;
  std::vector<host::HatchLoop> Loops() const override;
  void Evaluate() override { CheckAlive(); }

  void Transform(const Affine& m) override;
  void AddExtents(const Affine& m, Box2& box) const override;
  std::unique_ptr<MemEntity> CloneState() const override;

  int pattern_type_ = 1;
  std::string pattern_name_ = "SOLID";
  bool associative_ = false;
  double pattern_angle_ = 0;
  double pattern_scale_ = 1;
  double elevation_ = 0;
  std::vector<host::HatchLoop> loops_;
  // As for circles: a tilted hatch keeps its boundary in its plane.
  Point3 normal_{0, 0, 1};

 private:
  void AppendLoop(const std::vector<host::Entity*>& objects, int flags);
};

}  // namespace kestrana::memhost
