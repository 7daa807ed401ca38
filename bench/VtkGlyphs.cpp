#include "bench/VtkGlyphs.h"

#include <vtkActor.h>
#include <vtkArrowSource.h>
#include <vtkAutoInit.h>
#include <vtkCamera.h>
#include <vtkDoubleArray.h>
#include <vtkGlyph3DMapper.h>
#include <vtkNew.h>
#include <vtkPNGWriter.h>
#include <vtkPointData.h>
#include <vtkPoints.h>
#include <vtkPolyData.h>
#include <vtkRenderWindow.h>
#include <vtkRenderer.h>
#include <vtkSmartPointer.h>
#include <vtkSphereSource.h>
#include <vtkWindowToImageFilter.h>

#include <algorithm>
#include <sstream>

VTK_MODULE_INIT(vtkRenderingOpenGL2)

namespace Vek::Bench {

namespace {

vtkSmartPointer<vtkDoubleArray> Numbers(const char* p_name, const std::vector<double>& p_numbers) {
  auto array = vtkSmartPointer<vtkDoubleArray>::New();
  array->SetName(p_name);
  array->SetNumberOfTuples(static_cast<vtkIdType>(p_numbers.size()));
  std::copy(p_numbers.begin(), p_numbers.end(), array->GetPointer(0));
  return array;
}

vtkSmartPointer<vtkPolyDataAlgorithm> Source(bool p_isArrow) {
  if (p_isArrow)
    return vtkSmartPointer<vtkArrowSource>::New();
  return vtkSmartPointer<vtkSphereSource>::New();
}

} // namespace

struct VtkGlyphs::State {
  vtkNew<vtkPolyData> data;
  vtkSmartPointer<vtkPolyDataAlgorithm> source;
  vtkNew<vtkGlyph3DMapper> mapper;
  vtkNew<vtkActor> actor;
  vtkNew<vtkRenderer> renderer;
  vtkNew<vtkRenderWindow> window;
  double x, y;
};

VtkGlyphs::VtkGlyphs(int p_width, int p_height, int p_samples, const Points& p_positions, const Points& p_directions,
                     const std::vector<double>& p_sizes, const std::vector<double>& p_values)
    : _state(std::make_unique<State>()) {
  State& state = *_state;
  vtkNew<vtkPoints> points;
  points->SetDataTypeToDouble();
  for (const auto& position : p_positions)
    points->InsertNextPoint(position.data());
  state.data->SetPoints(points);
  state.data->GetPointData()->AddArray(Numbers("size", p_sizes));
  state.data->GetPointData()->AddArray(Numbers("value", p_values));
  vtkGlyph3DMapper& mapper = *state.mapper;
  mapper.SetInputData(state.data);
  state.source = Source(!p_directions.empty());
  mapper.SetSourceConnection(state.source->GetOutputPort());
  if (!p_directions.empty()) {
    vtkNew<vtkDoubleArray> directions;
    directions->SetName("direction");
    directions->SetNumberOfComponents(3);
    for (const auto& direction : p_directions)
      directions->InsertNextTuple(direction.data());
    state.data->GetPointData()->AddArray(directions);
    mapper.SetOrientationArray("direction");
    mapper.SetOrientationModeToDirection();
  }
  mapper.SetScaleArray("size");
  mapper.SetScaleModeToScaleByMagnitude();
  mapper.SetScalarModeToUsePointFieldData();
  mapper.SelectColorArray("value");
  mapper.SetScalarRange(0, 1);
  state.actor->SetMapper(state.mapper);
  state.renderer->AddActor(state.actor);
  state.renderer->SetBackground(1, 1, 1);
  state.x = p_width / 2.0;
  state.y = p_height / 2.0;
  vtkCamera& camera = *state.renderer->GetActiveCamera();
  camera.ParallelProjectionOn();
  camera.SetParallelScale(state.y);
  camera.SetViewUp(0, 1, 0);
  camera.SetClippingRange(1, 2.0 * p_width);
  state.window->SetOffScreenRendering(1);
  state.window->SetMultiSamples(p_samples);
  state.window->SetSize(p_width, p_height);
  state.window->AddRenderer(state.renderer);
}

VtkGlyphs::~VtkGlyphs() = default;

void VtkGlyphs::Draw(double p_shift) {
  vtkCamera& camera = *_state->renderer->GetActiveCamera();
  camera.SetFocalPoint(_state->x - p_shift, _state->y, 0);
  camera.SetPosition(_state->x - p_shift, _state->y, 2 * _state->x);
  _state->window->Render();
  _state->window->WaitForCompletion();
  _state->window->ReleaseCurrent(); // a thread has one context at a time, and others than those of VTK
}

std::size_t VtkGlyphs::Vertices() const {
  return static_cast<std::size_t>(_state->source->GetOutput()->GetNumberOfPoints());
}

std::string VtkGlyphs::Renderer() {
  _state->window->MakeCurrent();
  std::istringstream lines(_state->window->ReportCapabilities());
  _state->window->ReleaseCurrent();
  for (std::string line; std::getline(lines, line);)
    if (const std::string name = "OpenGL renderer string:"; line.compare(0, name.size(), name) == 0)
      return line.substr(name.size());
  return {};
}

void VtkGlyphs::Save(const std::string& p_path) {
  vtkNew<vtkWindowToImageFilter> image;
  image->SetInput(_state->window);
  vtkNew<vtkPNGWriter> writer;
  writer->SetInputConnection(image->GetOutputPort());
  writer->SetFileName(p_path.c_str());
  writer->Write();
  _state->window->ReleaseCurrent();
}

} // namespace Vek::Bench
