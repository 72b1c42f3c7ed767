#pragma once

namespace ProjectExplorer::Constants {

constexpr char BUILDSTEPS_BUILD[] = "ProjectExplorer.BuildSteps.Build";
constexpr char BUILDSTEPS_DEPLOY[] = "ProjectExplorer.BuildSteps.Deploy";

constexpr char TASK_CATEGORY_DEPLOYMENT[] = "Task.Category.Deploy";

} // namespace ProjectExplorer::Constants
