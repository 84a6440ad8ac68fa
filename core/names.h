// Fixed texts of the system: application name, element and network types,
// units, standard block names. Record values and filters use these, so a
// typo cannot split one name into two.
#pragma once

namespace kestrana::core {

// Every record of the system is stored under this application name, and
// every message box carries it as its title.
inline constexpr char kAppName[] = "Kestrana";
inline constexpr char kProgramVersion[] = "2.00";

inline constexpr char kGravity[] = "Gravity";
inline constexpr char kPressure[] = "Pressure";
inline constexpr char kGravityPipe[] = "GravityPipe";
inline constexpr char kPressurePipe[] = "PressurePipe";
inline constexpr char kGravityNode[] = "GravityNode";
inline constexpr char kPressureNode[] = "PressureNode";

// Combined-label kinds: "Pipe;<network>;<label>", "Node;<network>;<label>".
inline constexpr char kPipeKind[] = "Pipe";
inline constexpr char kNodeKind[] = "Node";

inline constexpr char kSectionShapeCircular[] = "SectionShape_Circular";
inline constexpr char kSectionShapeBox[] = "SectionShape_Box";

// Model units of the project record; anything but "Metric" means feet and
// inches.
inline constexpr char kMetric[] = "Metric";
inline constexpr char kUS[] = "US";

// Reference-list entries are ";RelatedTo<value>".
inline constexpr char kRelatedTo[] = "RelatedTo";

inline constexpr char kNodeBlock[] = "Kestrana_Node";
inline constexpr char kLowPointBlock[] = "Kestrana_LowPoint";
inline constexpr char kHighPointBlock[] = "Kestrana_HighPoint";
inline constexpr char kCrossingAnnoBlockS1[] = "Kestrana_CrossingAnno_S1";
inline constexpr char kCrossingAnnoBlockS2[] = "Kestrana_CrossingAnno_S2";
inline constexpr char kCrossingAnnoBlockS3[] = "Kestrana_CrossingAnno_S3";

// The layers of a network are "<network>" followed by these.
inline constexpr char kNetworkLayerSuffix[] = " - Network";
inline constexpr char kAnnotationLayerSuffix[] = " - Annotation";
inline constexpr char kArrowLayerSuffix[] = " - Arrow";
inline constexpr char kLowHighLayerSuffix[] = " - Low&High Points";

// Sent to the command line to cancel whatever command is running.
inline constexpr char kEscape[] = "\x1b";

inline constexpr char kCrossingLinesLayer[] = "Crossing Point Annotation Lines";
inline constexpr char kCrossingTextLayer[] = "Crossing Point Annotation Text";

}  // namespace kestrana::core
