// Puts a plot that zooms and reads values in place of each static one.
(function () {
    'use strict';

    var prefixes = { '-15': 'f', '-12': 'p', '-9': 'n', '-6': 'µ', '-3': 'm', 0: '', 3: 'k', 6: 'M',
                     9: 'G', 12: 'T' };
    var dashes = { solid: null, dashed: [5, 4], dotted: [2, 3], points: null };
    var svgSpace = 'http://www.w3.org/2000/svg';

    function plain(value, digits) {
        var size = Math.abs(value);
        if (size !== 0 && (size < 1e-4 || size >= 1e7)) {
            return value.toExponential(digits - 1).replace(/\.?0+e/, 'e').replace('e+', 'e');
        }
        return String(Number(value.toPrecision(digits)));
    }

    function withUnit(value, unit, digits) {
        if (!unit || unit === 'dB' || unit === 'UI' || unit === '%') {
            return plain(value, digits) + (unit ? ' ' + unit : '');
        }
        var exponent = value === 0 ? 0 :
            3 * Math.floor(Math.log10(Math.abs(value) * (1 + 1e-9)) / 3);
        if (!(exponent in prefixes)) exponent = 0;
        return plain(value / Math.pow(10, exponent), digits) + ' ' + prefixes[exponent] + unit;
    }

    function escaped(text) {
        return text.replace(/[&<>"']/g, function (c) { return '&#' + c.charCodeAt(0) + ';'; });
    }

    // The colour that the style sheet gives a class now.
    function colourOf(classes) {
        var svg = document.createElementNS(svgSpace, 'svg');
        var path = document.createElementNS(svgSpace, 'path');
        path.setAttribute('class', classes);
        svg.appendChild(path);
        document.body.appendChild(svg);
        var style = getComputedStyle(path);
        var colour = classes.indexOf('band') === 0 ? style.fill : style.stroke;
        document.body.removeChild(svg);
        return colour;
    }

    // Rows of x and the curves, in units without a prefix.
    function rowsOf(plot) {
        return plot.columns[0].map(function (x, i) {
            return plot.columns.map(function (column, k) {
                var value = column[i];
                if (value === 'gap') return NaN;
                return value === null ? null : value * (k === 0 ? plot.x : plot.y).factor;
            });
        });
    }

    // One sample line and one text per curve; the texts get the values under the cursor.
    function makeLegend(box, plot) {
        var where = document.createElement('span');
        var texts = plot.series.map(function (series) {
            var item = document.createElement('span');
            var svg = document.createElementNS(svgSpace, 'svg');
            svg.setAttribute('viewBox', '0 0 22 8');
            var line = document.createElementNS(svgSpace, 'path');
            line.setAttribute('class', 'line s' + series.colour + ' ' + series.stroke);
            line.setAttribute('d', series.stroke === 'points' ? 'M11 4h0' : 'M0 4h22');
            svg.appendChild(line);
            item.appendChild(svg);
            var text = document.createElement('span');
            text.textContent = series.name;
            item.appendChild(text);
            box.appendChild(item);
            return text;
        });
        box.appendChild(where);
        return function (x, values) {
            where.textContent = x === null ? '' : 'at ' + withUnit(x, plot.x.unit, 5);
            plot.series.forEach(function (series, k) {
                var value = values[series.name + k];
                var known = value !== undefined && value !== null && !isNaN(value);
                texts[k].textContent =
                    series.name + (known ? ': ' + withUnit(value, plot.y.unit, 4) : '');
            });
        };
    }

    function drawMarks(plot, context, area, graph) {
        // toDomXCoord knows no logarithms.
        function xAt(value) { return area.x + graph.toPercentXCoord(value) * area.w; }
        context.save();
        context.font = '11px sans-serif';
        var ends = [0, 0, 0, 0];
        plot.bands.forEach(function (band) {
            var left = Math.max(area.x, xAt(band.from));
            var right = Math.min(area.x + area.w, xAt(band.to));
            if (right < area.x || left > area.x + area.w) return;
            context.fillStyle = colourOf('band' + (band.warning ? ' warning' : ''));
            context.globalAlpha = 0.18;
            context.fillRect(left, area.y, Math.max(right - left, 2), area.h);
            context.globalAlpha = 1;
            context.fillStyle = context.strokeStyle = colourOf('s7');
            // Labels of neighbours stand above each other, as long as there is room.
            var row = ends.findIndex(function (end) { return end <= left; });
            if (row < 0) return;
            ends[row] = left + 4 + context.measureText(band.label).width;
            context.fillText(band.label, left + 3, area.y + area.h - 6 - 13 * row);
        });
        context.strokeStyle = context.fillStyle = colourOf('markline');
        context.setLineDash([2, 3]);
        var row = 0;
        plot.marks.forEach(function (mark) {
            context.beginPath();
            if (mark.direction === 'x') {
                var x = xAt(mark.at);
                if (x < area.x || x > area.x + area.w) return;
                context.moveTo(x, area.y);
                context.lineTo(x, area.y + area.h);
                var fits = x < area.x + 0.6 * area.w;
                context.textAlign = fits ? 'left' : 'right';
                context.fillText(mark.label, fits ? x + 4 : x - 4, area.y + 12 + 15 * (row++ % 4));
            } else {
                var y = graph.toDomYCoord(mark.at);
                if (y < area.y || y > area.y + area.h) return;
                context.moveTo(area.x, y);
                context.lineTo(area.x + area.w, y);
                context.textAlign = 'center';
                context.fillText(mark.label, area.x + 0.7 * area.w, y - 4);
            }
            context.stroke();
        });
        context.restore();
    }

    // Whole decades on a logarithmic axis, and 2 and 5 times them where there are few.
    function logTicker(low, high, pixels, options) {
        var first = Math.ceil(Math.log10(low) - 1e-9);
        var last = Math.floor(Math.log10(high) + 1e-9);
        var room = Math.max(2, Math.floor(pixels / options('pixelsPerLabel')));
        var format = options('axisLabelFormatter');
        var values = [];
        if (last - first >= 2) {
            var every = Math.ceil((last - first + 1) / room);
            for (var decade = first; decade <= last; ++decade) {
                if (decade % every === 0) values.push(Number('1e' + decade));
            }
        } else if (high / low > 3) {
            for (var d = first - 1; d <= last; ++d) {
                [1, 2, 5].forEach(function (digit) { values.push(Number(digit + 'e' + d)); });
            }
        } else {
            return Dygraph.numericLinearTicks(low, high, pixels, options);
        }
        return values.filter(function (v) { return v >= low * 0.999 && v <= high * 1.001; })
            .map(function (v) { return { v: v, label: format(v) }; });
    }

    function axisOptions(axis) {
        return {
            ticker: axis.log ? logTicker : Dygraph.numericLinearTicks,
            axisLabelFormatter: function (value) {
                if (axis.log && axis.unit) return withUnit(value, axis.unit, 3);
                return plain(value / axis.factor, axis.log ? 3 : 6);
            }
        };
    }

    function colours(plot) {
        return {
            colors: plot.series.map(function (series) { return colourOf('s' + series.colour); }),
            gridLineColor: colourOf('grid'),
            axisLineColor: colourOf('frame')
        };
    }

    function enliven(figure) {
        var plot = JSON.parse(figure.querySelector('script').textContent);
        var box = figure.querySelector('.graph');
        var show = makeLegend(figure.querySelector('.curves'), plot);
        var options = Object.assign({
            labels: ['x'].concat(plot.series.map(function (s, k) { return s.name + k; })),
            xlabel: escaped(plot.x.title),
            ylabel: escaped(plot.y.title),
            legend: 'never',
            connectSeparatedPoints: true,
            highlightCircleSize: 4,
            strokeWidth: 1.7,
            // A margin would reach below zero, where there is no logarithm.
            xRangePad: plot.x.log ? 0 : 2,
            yRangePad: plot.y.log ? 0 : 12,
            xLabelHeight: 20,
            yLabelWidth: 18,
            logscale: plot.y.log,
            series: {},
            axes: { x: axisOptions(plot.x), y: axisOptions(plot.y) },
            underlayCallback: function (context, area, graph) {
                drawMarks(plot, context, area, graph);
            },
            highlightCallback: function (event, x, points) {
                var values = {};
                points.forEach(function (point) { values[point.name] = point.yval; });
                show(x, values);
            },
            unhighlightCallback: function () { show(null, {}); }
        }, colours(plot));
        options.axes.x.logscale = plot.x.log;
        options.axes.x.axisLabelWidth = 70;
        options.axes.x.pixelsPerLabel = 75;
        options.axes.y.axisLabelWidth = 56;
        options.axes.y.pixelsPerLabel = 40;
        plot.series.forEach(function (series, k) {
            var points = series.stroke === 'points';
            options.series[series.name + k] = {
                strokePattern: dashes[series.stroke],
                strokeWidth: points ? 0 : series.stroke === 'solid' ? 1.7 : 1.3,
                drawPoints: points,
                pointSize: 3
            };
        });
        if (plot.x.range) options.dateWindow = plot.x.range;
        if (plot.y.range) options.valueRange = plot.y.range;
        figure.classList.add('scripted');
        var graph = new Dygraph(box, rowsOf(plot), options);
        figure.dygraph = graph;
        matchMedia('(prefers-color-scheme: dark)').addEventListener('change', function () {
            graph.updateOptions(colours(plot));
        });
    }

    // Inside a fold there is no room to draw in before it is opened.
    document.querySelectorAll('figure.plot').forEach(function (figure) {
        var fold = figure.closest('details');
        if (!fold || fold.open) {
            enliven(figure);
        } else {
            fold.addEventListener('toggle', function () { enliven(figure); }, { once: true });
        }
    });

    function openTarget() {
        var target = location.hash && document.getElementById(location.hash.slice(1));
        if (target && target.matches('details.fold')) target.open = true;
    }
    addEventListener('hashchange', openTarget);
    openTarget();
}());
