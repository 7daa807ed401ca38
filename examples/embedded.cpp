// A figure in an OpenGL widget of your own: the widget owns context and events, the figure draws where it is asked to.
#include <io/ReadTable.h>
#include <scene/Figure.h>

#include <QApplication>
#include <QOpenGLWidget>

using namespace Vek::Chart;

class Chart : public QOpenGLWidget {
public:
  Chart() {
    QSurfaceFormat format;
    format.setProfile(QSurfaceFormat::CompatibilityProfile); // without a version, which would bring a core profile
    format.setDepthBufferSize(24);
    format.setSamples(4);
    setFormat(format);
  }
  ~Chart() override {
    makeCurrent();
    figure.Release(Utility::Scoped<Rgl>(_gl)); // while the context lives
    doneCurrent();
  }

  Scene::Figure figure{"Earthquakes", "31 January to 7 February 2018"};

protected:
  void paintGL() override {
    Utility::Scoped<Rgl> gl(_gl);
    const double ratio = devicePixelRatioF();
    figure.Draw(gl, Types::Viewport<0>(0, 0, qRound(width() * ratio), qRound(height() * ratio)), ratio);
  }

private:
  Utility::Unscoped<Rgl> _gl = Rgl::OnCurrentContext();
};

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  auto quakes = Io::ReadTable(Io::SampleFile("earthquakes.csv"));
  Chart chart;
  chart.figure.Scatter(quakes.Points("lon", "lat")).ColorBy(quakes["depth_km"]).ColorTitle("Depth in km");
  chart.resize(1200, 640);
  chart.show();
  return application.exec();
}
