#include "support/profile_fixture.h"

#include "core/general.h"
#include "core/lists.h"
#include "core/pipe_record.h"
#include "core/record.h"
#include "host/host.h"
#include "profile/profile.h"
#include "profile/profile_record.h"

namespace kestrana::test {

host::BlockReference& AddProfileBlock(host::Document& document,
                                      const ProfileSpec& wanted) {
  const std::string block_name = std::string(profile::kProfileBlockPrefix) +
                                 wanted.network + "_" + wanted.name;
  host::Block& block =
      core::General::InitializeBlockDefinition(document, block_name);
  const double w = wanted.width, h = wanted.height;
  block.AddLightWeightPolyline({0, 0, w, 0, w, h, 0, h}).SetClosed(true);
  host::BlockReference& reference = document.ModelSpace().InsertBlock(
      {wanted.x, wanted.y, 0}, block_name, 1, 1, 1, 0);

  profile::ProfileInputs inputs;
  inputs.profile_name = wanted.name;
  inputs.network_name = wanted.network;
  inputs.network_type = wanted.network_type;
  inputs.style_name = wanted.style;
  inputs.insertion_point = {wanted.x, wanted.y, 0};
  for (size_t i = 0; i < wanted.pipes.size(); ++i) {
    const host::LwPolyline& pipe = *wanted.pipes[i];
    inputs.pipes.labels +=
        core::ReferenceEntry(core::General::EntityLabelFromCombined(
            core::Record::ReadRequired(pipe).Text(
                core::PipeField::kCombinedLabel)));
    inputs.pipes.oids += core::ReferenceEntry(core::IdText(pipe.ObjectID()));
    inputs.pipes.directions +=
        ";" + (i < wanted.directions.size() ? wanted.directions[i] : "0");
  }
  host::BlockReference* plan = nullptr;
  if (wanted.plan_annotation) {
    const std::string plan_name = block_name + "_Plan";
    core::General::InitializeBlockDefinition(document, plan_name)
        .AddLine({0, 0, 0}, {10, 0, 0});
    plan = &document.ModelSpace().InsertBlock({wanted.x, wanted.y - 20, 0},
                                              plan_name, 1, 1, 1, 0);
  }
  profile::Profile::BuildProfileBlockXData(document, inputs, reference, plan);
  if (plan != nullptr)
    profile::Profile::BuildProfilePlanAnnoBlockXData(
        wanted.name, wanted.network, reference, *plan);
  return reference;
}

}  // namespace kestrana::test
