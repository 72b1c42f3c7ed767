#pragma once

namespace ProjectExplorer::Constants {

constexpr char BUILDSTEPS_BUILD[] = "ProjectExplorer.BuildSteps.Build";
constexpr char BUILDSTEPS_DEPLOY[] = "ProjectExplorer.BuildSteps.Deploy";

} // namespace ProjectExplorer::Constants
