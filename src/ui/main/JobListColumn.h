#pragma once

// The columns of the job list, in the order in which they first stand.
enum class JobListColumn : int { Name, Status, Progress, Accuracy, JobNumber, Duration, DeliveryFormat };

inline constexpr int jobListColumnCount = 7;
